#!/usr/bin/env bash
# Installs the build into a scratch root and checks it as a desktop sees it:
#   check_install.sh BUILD_DIR [ROOT]   (ROOT: an unpacked package to check instead)
# The desktop entry and the metadata pass their validators, the icon is in the
# theme at every size, the man page renders without warnings and names every
# command, and the completion completes commands, keys and values.
set -euo pipefail
build="$(cd "$1" && pwd)"
fails=0
fail() { echo "FAIL: $*"; fails=$((fails + 1)); }
ok() { echo "ok: $*"; }

scratch="$(mktemp -d)"
trap 'rm -rf "$scratch"' EXIT
if [ $# -ge 2 ]; then
  root="$2"
else
  root="$scratch/root"
  DESTDIR="$root" "${CMAKE:-cmake}" --install "$build" --prefix /usr > "$scratch/install.log" || { cat "$scratch/install.log"; exit 1; }
fi
usr="$root/usr"
for tool in desktop-file-validate appstreamcli man; do
  command -v "$tool" > /dev/null || { echo "FAIL: $tool is missing (./test.sh installs it as root)"; exit 1; }
done

# Files where the desktop looks for them.
for f in bin/talvofinder bin/talvofinder-app; do
  [ -x "$usr/$f" ] && ok "$f" || fail "$f is not an executable"
done
# Ours among whatever else a system root holds.
desktop=$(grep -l '^Exec=talvofinder' "$usr"/share/applications/*.desktop 2>/dev/null | head -1 || true)
metainfo=$(grep -l '<binary>talvofinder</binary>' "$usr"/share/metainfo/*.metainfo.xml 2>/dev/null | head -1 || true)
[ -n "$desktop" ] || fail "no desktop entry"
[ -n "$metainfo" ] || fail "no metainfo"
for f in share/man/man1/talvofinder.1.gz share/bash-completion/completions/talvofinder \
         share/icons/hicolor/scalable/apps/talvofinder.svg; do
  [ -s "$usr/$f" ] && ok "$f" || fail "$f missing"
done
# A PNG's width and height are the big-endian words at bytes 16 and 20.
for s in 16 22 24 32 48 64 128 256; do
  png="$usr/share/icons/hicolor/${s}x${s}/apps/talvofinder.png"
  if [ ! -s "$png" ]; then fail "icon ${s}x${s} missing"; continue; fi
  dims=$(od -An -tu1 -j16 -N8 "$png" | awk '{print $3*256+$4 "x" $7*256+$8}')
  [ "$dims" = "${s}x${s}" ] && ok "icon ${s}x${s}" || fail "icon ${s}x${s} is $dims"
done

# The desktop entry: valid, its program and icon installed, a folder taken, and
# the name of the metadata's launchable.
if [ -n "$desktop" ]; then
  desktop-file-validate "$desktop" && ok "desktop-file-validate" || fail "desktop-file-validate"
  key() { sed -n "/^\[Desktop Entry\]/,/^\[/s/^$1=//p" "$desktop" | head -1; }
  exe=$(key Exec | cut -d' ' -f1)
  [ -x "$usr/bin/$exe" ] && ok "Exec $exe installed" || fail "Exec $exe not in bin"
  [[ $(key Exec) == *%[fFuU]* ]] && ok "Exec takes a path" || fail "Exec takes no path"
  [ "$(key MimeType)" = "inode/directory;" ] && ok "opens folders" || fail "MimeType is '$(key MimeType)'"
  [ -s "$usr/share/icons/hicolor/scalable/apps/$(key Icon).svg" ] && ok "Icon installed" || fail "Icon $(key Icon) not in the theme"
  grep -q "^GenericName\[de\]=" "$desktop" && grep -q "^GenericName\[ru\]=" "$desktop" \
    && ok "generic name in de and ru" || fail "generic name not translated"
  [ -n "$metainfo" ] && grep -q "<launchable type=\"desktop-id\">$(basename "$desktop")</launchable>" "$metainfo" \
    && ok "metainfo launches the entry" || fail "metainfo does not name $(basename "$desktop")"
fi
if [ -n "$metainfo" ]; then
  out=$(appstreamcli validate --no-net "$metainfo" 2>&1) && ok "appstreamcli validate" || { echo "$out"; fail "appstreamcli validate"; }
fi

# The man page renders without a warning and names every command of the program.
man_out="$scratch/man.txt"
if MANWIDTH=80 man --warnings -l "$usr/share/man/man1/talvofinder.1.gz" > "$man_out" 2> "$scratch/man.err" \
   && [ ! -s "$scratch/man.err" ] && grep -q "^SYNOPSIS" "$man_out"; then
  ok "man page renders"
else
  cat "$scratch/man.err"; fail "man page does not render cleanly"
fi
commands=$("$usr/bin/talvofinder" help 2>&1 | sed -n 's/^  \([^ ]*\).*/\1/p')
[ -n "$commands" ] || fail "no command list from talvofinder help"
for c in $commands; do
  grep -qF -- "$c" "$man_out" || fail "man page does not name the command $c"
done

# The completion, sourced as bash-completion would, asked as Tab would ask it.
export COMPLETION="$usr/share/bash-completion/completions/talvofinder"
complete_words() {
  bash -c 'source "$COMPLETION"
           COMP_WORDS=("$@"); COMP_CWORD=$(($# - 1)); COMPREPLY=()
           _talvofinder
           printf "%s\n" "${COMPREPLY[@]}"' _ "$@"
}
expect() {   # expect "WORDS..." REPLY...
  local words="$1"; shift
  local got; got=$(complete_words $words | paste -sd' ')
  [ "$got" = "$*" ] && ok "complete '$words' -> $*" || fail "complete '$words' gives '$got', not '$*'"
}
expect "talvofinder fi" find
expect "talvofinder find --sc" --scope
expect "talvofinder find --scope Pa" Paragraph
expect "talvofinder --d" --dir
expect "talvofinder stat --treat W" Word
expect "talvofinder find --dir /usr/inclu" /usr/include
expect "talvofinder filterP" filterProxy
# A key given already is not offered again; the value of a free key gets nothing.
expect "talvofinder find --dir /tmp --di"
expect "talvofinder find --find retu"

echo "$fails failed"
[ "$fails" -eq 0 ]
