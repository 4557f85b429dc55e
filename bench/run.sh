#!/usr/bin/env bash
# Times the finder's search engine (the headless command "find") side by side
# with fd, find, rg and grep on two corpora and prints the ratios ours / theirs.
#   bench/run.sh              everything (Release build, both corpora)
#   TF_BENCH_RUNS=5 ...       fewer timed runs per command (default 10)
#   TF_BENCH_ROUNDS=2 ...     rounds the runs are split into (default 5)
#   TF_BENCH_OUT=/tmp/x ...   where builds, corpora and results go (default bench/out)
#   TF_BENCH_CORPORA=inc ...  only /usr/include ("inc"), only the generated tree ("syn"), or both (default)
#   TF_BENCH_ONLY="or near" ... only these benchmarks (the ids after the corpus key)
# Warm cache: every command runs before it is timed. Output goes to a regular
# file (GNU grep stops early when its output is /dev/null). The runs of the
# commands compared are taken in rounds, in alternating order, and the table
# shows medians: on a shared machine whose speed drifts, every command then
# sees the same conditions, and a burst of load does not move the result.
set -euo pipefail

HERE="$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)"
ROOT="$(cd "$HERE/.." && pwd)"
OUT="${TF_BENCH_OUT:-$HERE/out}"
RUNS="${TF_BENCH_RUNS:-10}"
ROUNDS="${TF_BENCH_ROUNDS:-5}"
CORPORA="${TF_BENCH_CORPORA:-inc syn}"
BUILD="$OUT/build-release"
GEN="$OUT/gen20000"
RES="$OUT/results"
mkdir -p "$OUT" "$RES"

# ---- tools ----------------------------------------------------------------------------
# The build's own packages (Qt, PCRE2, Hyperscan, compiler) and the reference tools.
source "$ROOT/scripts/common.sh"
tf_install_missing ripgrep fd-find hyperfine time python3

# ---- Release build of the program --------------------------------------------------------
echo "Building a Release binary in $BUILD ..."
cmake -S "$ROOT" -B "$BUILD" -DCMAKE_BUILD_TYPE=Release -DTF_BUILD_TESTS=OFF > "$OUT/build.log" 2>&1
cmake --build "$BUILD" -j2 --target talvofinder >> "$OUT/build.log" 2>&1 || { tail -30 "$OUT/build.log"; exit 1; }
TF="$BUILD/talvofinder"
export XDG_CONFIG_HOME="$OUT/xdg/config" XDG_CACHE_HOME="$OUT/xdg/cache"
mkdir -p "$XDG_CONFIG_HOME" "$XDG_CACHE_HOME"

# ---- corpora -------------------------------------------------------------------------------
if [ ! -f "$GEN/manifest.json" ] || ! python3 -c "import json,sys; sys.exit(json.load(open('$GEN/manifest.json'))['files'] != 20000)"; then
  echo "Generating the synthetic tree (20000 files) in $GEN ..."
  rm -rf "$GEN"
  python3 "$HERE/gen_tree.py" "$GEN" --files 20000 > /dev/null
fi
SYN="$GEN/tree"

corpus_info() {   # files and bytes of a tree, without following links
  python3 - "$1" <<'PY'
import os, sys
n = b = 0
for d, dirs, files in os.walk(sys.argv[1]):
    for f in files:
        p = os.path.join(d, f)
        if os.path.islink(p) or not os.path.isfile(p): continue
        n += 1; b += os.path.getsize(p)
print(f"{n:,} files, {b/1e6:,.0f} MB")
PY
}

# ---- one benchmark: hyperfine over ours and up to two reference commands ----------------------
# bench ID TITLE OURS REF1 [REF2]    (commands are split like a shell would, no shell runs them)
bench() {
  local id="$1" title="$2"; shift 2
  if [ -n "${TF_BENCH_ONLY:-}" ] && [[ " $TF_BENCH_ONLY " != *" ${id#*-} "* ]]; then return; fi
  local names=(ours ref1 ref2) cmds=("$@") i r
  local per=$(( (RUNS + ROUNDS - 1) / ROUNDS ))
  printf '  %-48s' "$title"
  for ((r = 0; r < ROUNDS; r++)); do
    local args=() order=()
    for ((i = 0; i < ${#cmds[@]}; i++)); do order+=("$i"); done
    if (( r % 2 )); then   # every other round in reverse order
      local rev=(); for ((i = ${#order[@]} - 1; i >= 0; i--)); do rev+=("${order[$i]}"); done; order=("${rev[@]}")
    fi
    for i in "${order[@]}"; do args+=(-n "${names[$i]}" "${cmds[$i]}"); done
    hyperfine -N -i --warmup 1 --runs "$per" --style none --output "$OUT/cmd-output.txt" \
      --export-json "$RES/$id.r$r.json" "${args[@]}" >> "$RES/$id.log" 2>&1 || { echo " (hyperfine failed, see $RES/$id.log)"; return; }
  done
  # Peak memory (maximum resident set) of one more run of each command.
  i=0
  for c in "$@"; do
    eval "/usr/bin/time -f %M -o \"$RES/$id.${names[$i]}.mem\" $c" > "$OUT/cmd-output.txt" 2>/dev/null || true
    i=$((i + 1))
  done
  printf '%s\n' "$title" > "$RES/$id.title"
  printf '%s\n' "$@" > "$RES/$id.cmds"
  echo " done"
}

run_corpus() {   # run_corpus KEY DIR
  local key="$1" dir="$2" rare="$3" exts="$4" excl="$5"
  local fdext="" findext="" e
  IFS=',' read -ra E <<< "$exts"
  for e in "${E[@]}"; do fdext+=" -e $e"; findext+=" -o -iname '*.$e'"; done
  findext="${findext# -o }"
  local pat; pat="$(printf '*.%s,' "${E[@]}")"; pat="${pat%,}"
  echo "Corpus $key: $dir ($(corpus_info "$dir"))"
  echo "$dir ($(corpus_info "$dir"))" > "$RES/$key.corpus"
  bench "$key-scan" "scan: ext, size <= 100000, no hidden, excl." \
    "$TF find --dir $dir --pattern '$pat' --maxSize 100000 --npattern $excl" \
    "fdfind -I -t f$fdext -S -100000b -E $excl . $dir" \
    "find $dir \\( -iname $excl -o -name '.*' \\) -prune -o -type f \\( $findext \\) -size -100001c -print"
  bench "$key-common" "literal, common word ('return')" \
    "$TF find --dir $dir --hidden true --regex true --matchCase true --find return" \
    "rg -uuu -c return $dir" \
    "grep -r -c return $dir"
  bench "$key-rare" "literal, rare word ('$rare')" \
    "$TF find --dir $dir --hidden true --regex true --matchCase true --find $rare" \
    "rg -uuu -c $rare $dir" \
    "grep -r -c $rare $dir"
  bench "$key-icase" "case-insensitive word ('return')" \
    "$TF find --dir $dir --hidden true --find return" \
    "rg -uuu -i -c return $dir" \
    "grep -r -i -c return $dir"
  bench "$key-phrase" "phrase with a blank ('return value', -i)" \
    "$TF find --dir $dir --hidden true --find '\"return value\"'" \
    "rg -uuu -i -F -c 'return value' $dir" \
    "grep -r -i -F -c 'return value' $dir"
  bench "$key-offsets" "every hit with its offset ('return')" \
    "$TF find --dir $dir --hidden true --regex true --matchCase true --find return --show hits" \
    "rg -uuu -b -o return $dir" \
    "grep -r -b -o return $dir"
  bench "$key-regex" "regex '[A-Z][a-z]+Exception|errno'" \
    "$TF find --dir $dir --hidden true --regex true --matchCase true --find '[A-Z][a-z]+Exception|errno'" \
    "rg -uuu -c '[A-Z][a-z]+Exception|errno' $dir"
  # The query language: each against rg and against our plain 'return' (any
  # case) in the same rounds; the last two against rg -w and rg -s.
  bench "$key-or" "OR of two words ('return | break', -i)" \
    "$TF find --dir $dir --hidden true --find 'return | break'" \
    "rg -uuu -i -c -e return -e break $dir" \
    "$TF find --dir $dir --hidden true --find return"
  bench "$key-orx" "'(return | break) -static' vs plain" \
    "$TF find --dir $dir --hidden true --find '(return | break) -static'" \
    "$TF find --dir $dir --hidden true --find return"
  bench "$key-near" "'error NEAR/5 return' vs plain" \
    "$TF find --dir $dir --hidden true --find 'error NEAR/5 return'" \
    "$TF find --dir $dir --hidden true --find return"
  bench "$key-words" "whole words ('return', -i -w)" \
    "$TF find --dir $dir --hidden true --wholeWords true --find return" \
    "rg -uuu -i -w -c return $dir"
  bench "$key-case" "match case ('return', -s)" \
    "$TF find --dir $dir --hidden true --matchCase true --find return" \
    "rg -uuu -s -c return $dir"
  # The third command is ours without counting lines: the cost of counting
  # comes from the same rounds.
  bench "$key-lines" "count lines and bytes of every file" \
    "$TF find --dir $dir --hidden true --regex true --find ZQX_NOT_THERE_42 --show count" \
    "rg -uuu -c '' $dir" \
    "$TF find --dir $dir --hidden true --regex true --find ZQX_NOT_THERE_42 --show count --countLines false"
}

rm -f "$RES"/*
for c in $CORPORA; do
  case "$c" in
    inc) run_corpus inc /usr/include pthread_mutex_consistent h,hpp linux ;;
    syn) run_corpus syn "$SYN" ZQX_RARE_NEEDLE txt,md d0001 ;;
  esac
done

# ---- the engine's counts against the generator's manifest ------------------------------------
echo
echo "Checking the engine's counts on the synthetic tree against manifest.json:"
"$TF" find --dir "$SYN" --hidden true --show count > "$OUT/v-files.txt" || true
"$TF" find --dir "$SYN" --hidden true --pattern '*.txt,*.cpp,*.h,*.md,*.log,*.py,*.json,*.csv' --show count > "$OUT/v-text.txt" || true
"$TF" find --dir "$SYN" --hidden true --minSize 10241 --show count > "$OUT/v-big.txt" || true
"$TF" find --dir "$SYN" --hidden true --regex true --matchCase true --find return --show count > "$OUT/v-return.txt" || true
"$TF" find --dir "$SYN" --hidden true --find return --show count > "$OUT/v-return-i.txt" || true
"$TF" find --dir "$SYN" --hidden true --regex true --find ZQX_RARE_NEEDLE --show count > "$OUT/v-rare.txt" || true
"$TF" find --dir "$SYN" --hidden true --pattern '*.txt,*.cpp,*.h,*.md,*.log,*.py,*.json,*.csv' --regex true \
  --find ZQX_NOT_THERE_42 --show count > "$OUT/v-lines.txt" || true
rg -uuu -c '' -g '*.{txt,cpp,h,md,log,py,json,csv}' "$SYN" > "$OUT/v-rg-lines.txt" || true

python3 - "$GEN/manifest.json" "$OUT" <<'PY'
import json, re, sys
m = json.load(open(sys.argv[1])); out = sys.argv[2]
def summary(name):   # files-total, bytes text skipped, files-match, match-total
    t = open(f"{out}/{name}").read()
    g = re.search(r"files-total:([\d,]+) => .*?, files-match:([\d,]+), match-total:([\d,]+)", t)
    return [int(x.replace(",", "")) for x in g.groups()]
def totals(name):
    g = re.search(r"files: total:([\d,]+), files match:([\d,]+)", open(f"{out}/{name}").read())
    return [int(x.replace(",", "")) for x in g.groups()]
lines = re.search(r"lines:(\d+), bytes:(\d+)", open(f"{out}/v-lines.txt").read())
allbytes = re.search(r"lines:(\d+), bytes:(\d+)", open(f"{out}/v-rare.txt").read())
rglines = sum(int(l.rsplit(":", 1)[1]) for l in open(f"{out}/v-rg-lines.txt") if ":" in l)
checks = [
    ("files", totals("v-files.txt")[0], m["files"]),
    ("text files", totals("v-text.txt")[1], m["text_files"]),
    ("files > 10 KiB", totals("v-big.txt")[1], m["size_gt_10k"]),
    ("bytes read", int(allbytes.group(2)), m["bytes"]),
    ("hits 'return'", summary("v-return.txt")[2], m["hits"]["return"]),
    ("files with 'return'", summary("v-return.txt")[1], m["hitfiles"]["return"]),
    ("hits 'return', any case", summary("v-return-i.txt")[2], m["hits"]["return"]),
    ("hits rare needle", summary("v-rare.txt")[2], m["hits"]["ZQX_RARE_NEEDLE"]),
    ("files with rare needle", summary("v-rare.txt")[1], m["hitfiles"]["ZQX_RARE_NEEDLE"]),
    ("lines of text files (vs rg -c '')", int(lines.group(1)), rglines),
]
bad = 0
for name, got, want in checks:
    ok = got == want; bad += not ok
    print(f"  {'ok  ' if ok else 'FAIL'} {name:36s} engine {got:>12,}  expected {want:>12,}")
print("  all counts equal" if not bad else f"  {bad} count(s) differ")
PY

# ---- table ------------------------------------------------------------------------------------------
echo
python3 - "$RES" <<'PY'
import json, os, sys, glob
res = sys.argv[1]
import statistics
def mean(id_):   # median and spread of every command over all rounds
    if id_.endswith("-read"):   # measured as the third command of the line count
        r = mean(id_[:-5] + "-lines").get("ref2")
        return {"ours": r} if r else {}
    times = {}
    for p in sorted(glob.glob(f"{res}/{id_}.r*.json")):
        for r in json.load(open(p))["results"]:
            times.setdefault(r["command"], []).extend(r["times"])
    return {c: {"mean": statistics.median(t), "stddev": statistics.pstdev(t)} for c, t in times.items() if t}
def mem(id_, who):
    p = f"{res}/{id_}.{who}.mem"
    try: return int(open(p).read().split()[-1]) / 1024
    except Exception: return None
def ms(r): return f"{r['mean']*1000:7.1f}±{r['stddev']*1000:4.1f}" if r else " " * 12
refs = {"scan": ("fd", "find"), "lines": ("rg -c ''", ""), "regex": ("rg", ""), "read": ("", "")}
for key in ("inc", "syn"):
    if not os.path.exists(f"{res}/{key}.corpus"): continue
    print(f"Corpus: {open(f'{res}/{key}.corpus').read().strip()}")
    print(f"  {'benchmark (medians)':48s} {'ours ms':>12s} {'ref1 ms':>12s} {'ref2 ms':>12s}  {'ours/ref1':>9s} {'ours/ref2':>9s}   peak MB ours/ref1/ref2")
    ids = ["scan", "common", "rare", "icase", "phrase", "offsets", "regex", "or", "orx", "near", "words", "case", "lines", "read"]
    for i in ids:
        id_ = f"{key}-{i}"
        r = mean(id_)
        if not r: continue
        if i == "read":   # the third command of the line count, shown on a row of its own
            title, memOf = "read every file, lines not counted (ours)", [("lines", "ref2")]
        else:
            title = open(f"{res}/{id_}.title").read().strip()
            memOf = [(i, w) for w in ("ours", "ref1", "ref2")[:len(r)]]
            if i == "lines": r.pop("ref2", None); memOf = memOf[:2]
        o, a, b = r.get("ours"), r.get("ref1"), r.get("ref2")
        q1 = f"{o['mean']/a['mean']:9.2f}" if o and a else " " * 9
        q2 = f"{o['mean']/b['mean']:9.2f}" if o and b else " " * 9
        mm = "/".join("-" if mem(f"{key}-{k}", w) is None else f"{mem(f'{key}-{k}', w):.0f}" for k, w in memOf)
        print(f"  {title:48s} {ms(o)} {ms(a)} {ms(b)}  {q1} {q2}   {mm}")
    lines, read = mean(f"{key}-lines").get("ours"), mean(f"{key}-read").get("ours")
    if lines and read:
        print(f"  counting lines adds {100*(lines['mean']/read['mean']-1):+.1f} % over reading every file")
    print("  ref1/ref2: scan fd -I / find; lines and regex rg; OR rg -i -e -e / ours plain 'return';")
    print("  '-static' and NEAR: ours plain 'return'; whole words rg -i -w; match case rg -s; the others rg -uuu / grep -r")
    print()
PY
