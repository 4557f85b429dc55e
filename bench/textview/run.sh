#!/usr/bin/env bash
# Text and hex view on a generated 1 GiB log file, offscreen, with standard
# tools on the same file for reference. Not a test: numbers, not assertions.
#   bench/textview/run.sh [--file PATH] [--generate-mb N]   (the file is made when missing)
set -euo pipefail
ROOT="$(cd "$(dirname "$0")/../.." && pwd)"
BUILD="$ROOT/build-bench"
FILE=/tmp/tf_bench_textview_1g.log
ARGS=("$@")
for ((i = 0; i < ${#ARGS[@]}; i++)); do
  [[ "${ARGS[$i]}" == "--file" ]] && FILE="${ARGS[$((i + 1))]}"
done

cmake -S "$ROOT" -B "$BUILD" -DCMAKE_BUILD_TYPE=Release -DTF_BUILD_TESTS=OFF -DTF_BUILD_BENCH=ON >/dev/null
cmake --build "$BUILD" -j2 --target tf_bench_textview >/dev/null

# The program generates the file when it is missing; warm the cache for every tool alike.
QT_QPA_PLATFORM=offscreen "$BUILD/bench/textview/tf_bench_textview" "$@" --generate-only
cat "$FILE" >/dev/null

echo "== reference tools on $(du -h "$FILE" | cut -f1) ($FILE)"
t0=$(date +%s%N); wc -l "$FILE" >/dev/null; t1=$(date +%s%N)
WC_MS=$(( (t1 - t0) / 1000000 ))
t0=$(date +%s%N); tail -n 50 "$FILE" >/dev/null; t1=$(date +%s%N)
TAIL_MS=$(( (t1 - t0) / 1000000 ))
t0=$(date +%s%N); head -n 50 "$FILE" >/dev/null; t1=$(date +%s%N)
HEAD_MS=$(( (t1 - t0) / 1000000 ))
echo "  wc -l (counting lines)     ${WC_MS} ms"
echo "  head -n 50                 ${HEAD_MS} ms"
echo "  tail -n 50                 ${TAIL_MS} ms"
echo
echo "== talvofinder views"
OUT=$(QT_QPA_PLATFORM=offscreen /usr/bin/time -f "max RSS (time -v): %M KiB" "$BUILD/bench/textview/tf_bench_textview" "$@" 2>&1)
echo "$OUT" | grep -v '^RESULT'
RES=$(echo "$OUT" | grep '^RESULT' || true)
idx=$(echo "$RES" | sed -n 's/.*index_ms=\([0-9.]*\).*/\1/p')
end=$(echo "$RES" | sed -n 's/.*end_ms=\([0-9.]*\).*/\1/p')
if [[ -n "$idx" && "$WC_MS" -gt 0 ]]; then
  echo
  echo "== ratios (ours / reference)"
  awk -v a="$idx" -v b="$WC_MS" 'BEGIN { printf "  indexing / wc -l           %.2f\n", a / b }'
  awk -v a="$end" -v b="$TAIL_MS" 'BEGIN { if (b < 1) b = 1; printf "  scroll to end / tail -n 50 %.2f  (tail: %d ms, floor 1 ms)\n", a / b, b }'
fi
