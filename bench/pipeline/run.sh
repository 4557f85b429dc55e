#!/usr/bin/env bash
# The search pipeline in the real window, offscreen: Escape to "cancelled" inside
# a 10 GB file and the GUI thread's longest stall (see bench_pipeline.cpp).
# Not a test: numbers, not assertions.
#   bench/pipeline/run.sh [FOLDER [WORD]]     (default /usr/include and 'return')
#   TF_BENCH_BIG_GB=10 ...                    size of the big file (default 10; 0: no big file,
#                                             only the folder's search, its memory and sorting)
set -euo pipefail
ROOT="$(cd "$(dirname "$0")/../.." && pwd)"
BUILD="${TF_BENCH_BUILD:-$ROOT/build-bench}"
FOLDER="${1:-/usr/include}"
WORD="${2:-return}"
GB="${TF_BENCH_BIG_GB:-10}"
BIG="$(mktemp -d)"
trap 'rm -rf "$BIG"' EXIT
# Real text (a sparse file would be skipped at once): needs GB gigabytes of disk for the run.
BIGARG="$BIG"
if [ "$GB" = "0" ]; then BIGARG="-"; else
  echo "writing a ${GB} GB text file in $BIG ..."
  yes "a line of an enormous log file without the word we look for" | head -c "${GB}G" > "$BIG/huge.log" || true
fi
cmake -S "$ROOT" -B "$BUILD" -DCMAKE_BUILD_TYPE=Release -DTF_BUILD_TESTS=OFF -DTF_BUILD_BENCH=ON >/dev/null
cmake --build "$BUILD" -j2 --target tf_bench_pipeline talvofinder >/dev/null
cat /dev/null $(find "$FOLDER" -type f 2>/dev/null | head -50000) >/dev/null 2>&1 || true   # warm cache
QT_QPA_PLATFORM=offscreen "$BUILD/bench/pipeline/tf_bench_pipeline" "$BIGARG" "$FOLDER" "$WORD" "$BUILD/talvofinder"
