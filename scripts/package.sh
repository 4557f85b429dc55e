#!/usr/bin/env bash
# Builds the Debian package (build/talvofinder_VERSION-1_ARCH.deb) and checks it:
# unpacked into a scratch root, every file is where the desktop expects it (the
# same checks as the installation test), its dependencies come from the
# binaries, and the unpacked program searches.
#   scripts/package.sh            build, package, check
#   scripts/package.sh --install  also apt-get install the package (as root), check
#                                 /usr/bin/talvofinder, and remove it again
source "$(dirname "$0")/common.sh"
tf_install_missing $TF_CHECK_PACKAGES
tf_build > "$TF_BUILD.log" 2>&1 || { cat "$TF_BUILD.log"; exit 1; }
cd "$TF_BUILD"
rm -f talvofinder_*.deb
cpack -G DEB > cpack.log 2>&1 || { cat cpack.log; exit 1; }
deb="$(ls "$TF_BUILD"/talvofinder_*.deb)"
echo "package: $deb"
dpkg-deb --info "$deb" | sed -n 's/^ \(Package\|Version\|Depends\|Recommends\):/  &/p'

root="$(mktemp -d)"
trap 'rm -rf "$root"' EXIT
dpkg-deb -x "$deb" "$root"
fails=0
depends="$(dpkg-deb -f "$deb" Depends)"
for lib in libqt5core5a libqt5widgets5 libqt5svg5 libpcre2-8-0; do
  [[ $depends == *"$lib "* ]] || { echo "FAIL: Depends lacks $lib"; fails=$((fails + 1)); }
done
[ -z "$(dpkg-deb --ctrl-tarfile "$deb" | tar -t | grep -E 'preinst|postinst|prerm|postrm')" ] \
  || { echo "FAIL: the package has maintainer scripts"; fails=$((fails + 1)); }
bash "$TF_ROOT/dist/check_install.sh" "$TF_BUILD" "$root" || fails=$((fails + 1))

# The unpacked program finds a word in a folder of its own making.
data="$root/data"
mkdir -p "$data/sub" && printf 'one\nerrno here\n' > "$data/sub/a.h" && printf 'nothing\n' > "$data/b.h"
out="$("$root/usr/bin/talvofinder" find --dir "$data" --find errno)" || true
if [[ $out == "1"$'\t'"$data/sub/a.h"* ]]; then echo "ok: unpacked talvofinder find"; else
  echo "FAIL: unpacked talvofinder find printed: $out"; fails=$((fails + 1)); fi

# Documents and archives come from the packaged module, not from the build.
printf 'zebra in a compressed log\n' | gzip > "$data/app.log.gz"
out="$("$root/usr/bin/talvofinder" find --dir "$data" --find zebra --documents true --log 5 2>&1)" || true
if [[ $out == *"module loaded: $root/"* && $out == *"1"$'\t'"$data/app.log.gz"* ]]; then echo "ok: unpacked documents module"; else
  echo "FAIL: unpacked talvofinder did not search app.log.gz with its own module: $out"; fails=$((fails + 1)); fi

if [ "${1:-}" = "--install" ]; then
  export DEBIAN_FRONTEND=noninteractive
  apt-get install -y -qq "$deb" > /dev/null
  [ "$(command -v talvofinder)" = /usr/bin/talvofinder ] || { echo "FAIL: not in /usr/bin"; fails=$((fails + 1)); }
  talvofinder find --dir /usr/include --find errno | tail -1
  bash "$TF_ROOT/dist/check_install.sh" "$TF_BUILD" / || fails=$((fails + 1))
  apt-get purge -y -qq talvofinder > /dev/null
fi
[ "$fails" -eq 0 ] && echo "package checks passed" || { echo "package checks: $fails failed"; exit 1; }
