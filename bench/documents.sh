#!/usr/bin/env bash
# Documents and archives: times "find --documents true" side by side with
# ugrep -z (archives and compressed files) and pdfgrep (PDFs) on corpora made
# from /usr/include, prints the ratios ours / theirs, and the peak memory of a
# search through one big archive.
#   bench/documents.sh
#   TF_BENCH_RUNS=5 ...      timed runs per command (default 10)
#   TF_BENCH_BIG_MB=2048 ... size of the big archive for the memory line (0: skip)
#   TF_BENCH_OUT=/tmp/x ...  where the build, corpora and results go (default bench/out)
#   TF_BENCH_WORD=... ...    the word to find in archives (default EXIT_SUCCESS)
#   TF_BENCH_PDF_WORD=...    the word to find in PDFs (default size_t)
set -euo pipefail

HERE="$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)"
ROOT="$(cd "$HERE/.." && pwd)"
OUT="${TF_BENCH_OUT:-$HERE/out}"
RUNS="${TF_BENCH_RUNS:-10}"
BIG_MB="${TF_BENCH_BIG_MB:-2048}"
WORD="${TF_BENCH_WORD:-EXIT_SUCCESS}"
PDF_WORD="${TF_BENCH_PDF_WORD:-size_t}"
BUILD="$OUT/build-release"
DOCS="$OUT/docs"
RES="$OUT/results"
mkdir -p "$OUT" "$RES"

source "$ROOT/scripts/common.sh"
tf_install_missing ugrep pdfgrep groff hyperfine time python3

echo "Building a Release binary in $BUILD ..."
cmake -S "$ROOT" -B "$BUILD" -DCMAKE_BUILD_TYPE=Release -DTF_BUILD_TESTS=OFF > "$OUT/build.log" 2>&1
cmake --build "$BUILD" -j2 --target talvofinder >> "$OUT/build.log" 2>&1 || { tail -30 "$OUT/build.log"; exit 1; }
TF="$BUILD/talvofinder"
export XDG_CONFIG_HOME="$OUT/xdg/config" XDG_CACHE_HOME="$OUT/xdg/cache"
mkdir -p "$XDG_CONFIG_HOME" "$XDG_CACHE_HOME"

# ---- corpora ---------------------------------------------------------------------------------
if [ ! -f "$DOCS/done" ]; then
  echo "Making the corpora in $DOCS ..."
  rm -rf "$DOCS"
  mkdir -p "$DOCS/arc" "$DOCS/pdf"
  python3 - "$DOCS" <<'PY'
import io, lzma, os, sys, tarfile, zipfile
out, src = sys.argv[1], "/usr/include"
arc = os.path.join(out, "arc")
# One .tar.gz per top-level folder, the loose headers in one more.
loose = []
for name in sorted(os.listdir(src)):
    p = os.path.join(src, name)
    if os.path.isdir(p) and not os.path.islink(p):
        with tarfile.open(os.path.join(arc, name + ".tar.gz"), "w:gz") as t:
            t.add(p, arcname=name)
    elif os.path.isfile(p):
        loose.append(name)
with tarfile.open(os.path.join(arc, "_top.tar.gz"), "w:gz") as t:
    for n in loose: t.add(os.path.join(src, n), arcname=n)
# One zip of everything; xz copies of the large headers.
with zipfile.ZipFile(os.path.join(out, "all.zip"), "w", zipfile.ZIP_DEFLATED) as z:
    for d, _, files in os.walk(src):
        for f in files:
            p = os.path.join(d, f)
            if os.path.isfile(p) and not os.path.islink(p):
                z.write(p, os.path.relpath(p, src))
                if os.path.getsize(p) > 100_000:
                    with open(p, "rb") as i, lzma.open(os.path.join(arc, f + ".xz"), "wb") as o: o.write(i.read())
os.rename(os.path.join(out, "all.zip"), os.path.join(arc, "all.zip"))
PY
  # PDFs: the largest headers typeset as plain text.
  find /usr/include -type f -size +40k | sort | head -60 | while read -r f; do
    sed -e 's/\\/\\e/g' -e "s/^[.']/\\\\\\&&/" "$f" | groff -Tpdf > "$DOCS/pdf/$(basename "$f").pdf" 2>/dev/null || true
  done
  touch "$DOCS/done"
fi

size_of() { du -sh "$1" | cut -f1; }
median() { python3 -c "import json,sys; print(json.load(open(sys.argv[1]))['results'][int(sys.argv[2])]['median'])" "$@"; }

# ---- timings -----------------------------------------------------------------------------------
compare() {   # id, max ratio, ours, theirs
  local id="$1" limit="$2" ours="$3" theirs="$4"
  hyperfine -N -i --warmup 1 --runs "$RUNS" --style none --output "$OUT/cmd-output.txt" \
    --export-json "$RES/doc-$id.json" "$ours" "$theirs" > "$RES/doc-$id.log" 2>&1 || { echo "$id: hyperfine failed"; return; }
  local a b
  a=$(median "$RES/doc-$id.json" 0)
  b=$(median "$RES/doc-$id.json" 1)
  python3 -c "import sys; a,b,l=map(float,sys.argv[1:4]); r=a/b; print(f'{sys.argv[4]:<34} ours {a*1000:8.1f} ms  theirs {b*1000:8.1f} ms  ratio {r:5.2f}  (goal <= {l}) {\"ok\" if r<=l else \"OVER\"}')" \
    "$a" "$b" "$limit" "$id"
}

echo "Corpora: archives $(size_of "$DOCS/arc") in $(ls "$DOCS/arc" | wc -l) files, PDFs $(size_of "$DOCS/pdf") in $(ls "$DOCS/pdf" | wc -l) files; word '$WORD'"
echo "Found: ours $("$TF" find --dir "$DOCS/arc" --find "$WORD" --documents true --show files 2>/dev/null | head -n -1 | wc -l) rows," \
     "ugrep $(ugrep -z -i -r -l "$WORD" "$DOCS/arc" 2>/dev/null | wc -l) rows (archives)"
compare "archives vs ugrep -z" 1.0 \
  "$TF find --dir $DOCS/arc --find $WORD --documents true --show count" \
  "ugrep -z -i -r -c $WORD $DOCS/arc"
echo "Found: ours $("$TF" find --dir "$DOCS/pdf" --find "$PDF_WORD" --documents true --show count 2>/dev/null | head -1 | sed 's/.*match-total:\([0-9,]*\).*/\1/') hits," \
     "pdfgrep $(pdfgrep -i -r -c "$PDF_WORD" "$DOCS/pdf" | awk -F: '{s+=$NF} END {print s}') hits (PDFs, word '$PDF_WORD')"
compare "pdfs vs pdfgrep -c" 0.8 \
  "$TF find --dir $DOCS/pdf --find $PDF_WORD --documents true --show count" \
  "pdfgrep -i -r -c $PDF_WORD $DOCS/pdf"

# ---- memory --------------------------------------------------------------------------------------
if [ "$BIG_MB" -gt 0 ]; then
  BIG="$OUT/big"
  if [ ! -f "$BIG/big-$BIG_MB.tar" ]; then
    rm -rf "$BIG" && mkdir -p "$BIG"
    python3 - "$BIG/big-$BIG_MB.tar" "$BIG_MB" <<'PY'
import os, sys, tarfile
dest, limit = sys.argv[1], int(sys.argv[2]) << 20
files = [os.path.join(d, f) for d, _, fs in os.walk("/usr/include") for f in fs]
files = [p for p in files if os.path.isfile(p) and not os.path.islink(p)]
total, round_ = 0, 0
with tarfile.open(dest, "w") as t:
    while total < limit:
        for p in files:
            t.add(p, arcname=f"r{round_}/{os.path.relpath(p, '/usr/include')}")
            total += os.path.getsize(p) + 512
            if total >= limit: break
        round_ += 1
PY
  fi
  /usr/bin/time -f "%M" -o "$RES/doc-mem.txt" "$TF" find --dir "$BIG" --find "$WORD" --documents true --show count > /dev/null 2>&1 || true
  echo "peak memory searching a $(size_of "$BIG/big-$BIG_MB.tar") archive: $(( $(cat "$RES/doc-mem.txt") / 1024 )) MB (goal <= 200 MB)"
fi
