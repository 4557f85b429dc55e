#!/usr/bin/env bash
# The engine at scale, side by side with rg and fd in one run: wall time (median
# of three after a warm-up run) and peak memory, as ratios ours / theirs.
#   1. A word with tens of millions of hits: "find --find e --show count" on a
#      big folder against rg counting every match.
#   2. The same search in the window (offscreen): the process's peak memory, the
#      GUI thread's longest stall when the file with the most hits is shown, and
#      the time to sort the table by each column.
#   3. A generated tree of a million small files: the walk alone beside fd, a
#      content search beside rg, and the window's search of about 200,000 result
#      files (*.py and *.md with 'return') sorted by each column.
# Not a test: numbers, not assertions.
#   bench/scale.sh
#   TF_BENCH_OUT=/tmp/x ...        builds, the generated tree and results (default bench/out)
#   TF_BENCH_BUILD=build ...       a build folder to take instead of a Release build
#   TF_BENCH_FOLDER=/usr/share     the big folder of steps 1 and 2
#   TF_BENCH_MILLION=/path/tree    a generated million-file tree (made in OUT when missing: ~12 GB)
#   TF_BENCH_STEPS="1 2 3"         which steps
set -euo pipefail
HERE="$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)"
ROOT="$(cd "$HERE/.." && pwd)"
OUT="${TF_BENCH_OUT:-$HERE/out}"
FOLDER="${TF_BENCH_FOLDER:-/usr/share}"
STEPS="${TF_BENCH_STEPS:-1 2 3}"
mkdir -p "$OUT"
source "$ROOT/scripts/common.sh"
tf_install_missing ripgrep fd-find time python3
FD="$(command -v fd || command -v fdfind)"

BUILD="${TF_BENCH_BUILD:-$OUT/build-release}"
if [ -z "${TF_BENCH_BUILD:-}" ]; then
  echo "Building a Release binary in $BUILD ..."
  cmake -S "$ROOT" -B "$BUILD" -DCMAKE_BUILD_TYPE=Release -DTF_BUILD_TESTS=OFF -DTF_BUILD_BENCH=ON > "$OUT/build-scale.log" 2>&1
  cmake --build "$BUILD" -j2 --target talvofinder tf_bench_pipeline >> "$OUT/build-scale.log" 2>&1 || { tail -30 "$OUT/build-scale.log"; exit 1; }
fi
TF="$BUILD/talvofinder"
PIPE="$BUILD/bench/pipeline/tf_bench_pipeline"
export XDG_CONFIG_HOME="$OUT/xdg/config" XDG_CACHE_HOME="$OUT/xdg/cache"
mkdir -p "$XDG_CONFIG_HOME" "$XDG_CACHE_HOME"

# measure NAME CMD...: prints "seconds peak-KB" (medians of three timed runs after one warm-up).
measure() {
  local name="$1"; shift
  "$@" > "$OUT/scale-$name.out" 2>/dev/null || true
  local t=() m=()
  for i in 1 2 3; do
    /usr/bin/time -f "%e %M" -o "$OUT/scale-time" "$@" > "$OUT/scale-$name.out" 2>/dev/null || true
    read -r s k < "$OUT/scale-time"
    t+=("$s"); m+=("$k")
  done
  python3 -c "import statistics,sys; a=sys.argv[1:4]; b=sys.argv[4:]; print(statistics.median(map(float,a)), int(statistics.median(map(int,b))))" "${t[@]}" "${m[@]}"
}
# line LABEL OURS THEIRS THEIR_NAME: one benchmark line with both times, memories and ratios.
line() {
  python3 - "$@" <<'PY'
import sys
label, ours, theirs, name = sys.argv[1], sys.argv[2].split(), sys.argv[3].split(), sys.argv[4]
ot, om, tt, tm = float(ours[0]), int(ours[1]), float(theirs[0]), int(theirs[1])
print(f"{label:<58} ours {ot:7.2f} s {om/1024:7.0f} MB | {name} {tt:7.2f} s {tm/1024:6.0f} MB | time ×{ot/max(tt,1e-3):.2f}")
PY
}

if [[ " $STEPS " == *" 1 "* ]]; then
  echo "== 1. a word with tens of millions of hits in $FOLDER"
  ours=$(measure ours-e "$TF" find --dir "$FOLDER" --find e --show count)
  rg=$(measure rg-e rg -c --count-matches --no-ignore --ignore-case e "$FOLDER")
  line "find --find e --show count (goal: time ×1.5, 100 MB)" "$ours" "$rg" rg
  grep -h "match-total" "$OUT/scale-ours-e.out" || true
fi
if [[ " $STEPS " == *" 2 "* ]]; then
  echo "== 2. the same search in the window (goal: 300 MB)"
  QT_QPA_PLATFORM=offscreen "$PIPE" - "$FOLDER" e 2>/dev/null
fi
if [[ " $STEPS " == *" 3 "* ]]; then
  TREE="${TF_BENCH_MILLION:-$OUT/million/tree}"
  if [ ! -d "$TREE" ]; then
    echo "Generating a tree of 1,000,000 files in $OUT/million (a few minutes, ~12 GB) ..."
    python3 "$HERE/gen_tree.py" "$OUT/million" --files 1000000 --big-mb 1 > /dev/null
    TREE="$OUT/million/tree"
  fi
  echo "== 3. a million files in $TREE"
  ours=$(measure ours-walk "$TF" find --dir "$TREE")
  fd=$(measure fd-walk "$FD" --no-ignore --type f . "$TREE")
  line "the walk: every file by name" "$ours" "$fd" fd
  ours=$(measure ours-return "$TF" find --dir "$TREE" --find return --show count)
  rg=$(measure rg-return rg -c --count-matches --no-ignore --ignore-case return "$TREE")
  line "content search 'return' --show count" "$ours" "$rg" rg
  grep -h "match-total" "$OUT/scale-ours-return.out" || true
  echo "-- the window: 'return' in *.py and *.md (about 200,000 files with hits)"
  TF_BENCH_PATTERN='*.py,*.md' QT_QPA_PLATFORM=offscreen "$PIPE" - "$TREE" return 2>/dev/null
fi
