# Shared by run.sh and test.sh: install what is missing (Debian, as root),
# configure and build. Safe to run again: every step is skipped when done.
set -euo pipefail

TF_ROOT="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
TF_BUILD="${TF_BUILD:-$TF_ROOT/build}"
TF_BUILD_TYPE="${TF_BUILD_TYPE:-RelWithDebInfo}"

tf_packages() {
  local pkgs=(cmake make g++ pkg-config ccache qtbase5-dev libqt5svg5-dev libpcre2-dev
              libarchive-dev libpoppler-cpp-dev
              xvfb xauth fonts-dejavu-core qttranslations5-l10n)
  # The fast matcher exists for x86-64 only; the build falls back to PCRE2 elsewhere.
  if [ "$(uname -m)" = "x86_64" ]; then pkgs+=(libhyperscan-dev); fi
  printf '%s\n' "${pkgs[@]}"
}

# What the installation test and the Debian package need beyond the build:
# test.sh and package.sh install these, run.sh does not.
TF_CHECK_PACKAGES="desktop-file-utils appstream man-db dpkg-dev file"

tf_install_missing() {
  local missing=()
  local p
  for p in $(tf_packages) "$@"; do
    if ! dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed"; then
      missing+=("$p")
    fi
  done
  [ ${#missing[@]} -eq 0 ] && return 0
  echo "Installing missing packages: ${missing[*]}"
  local SUDO=""
  if [ "$(id -u)" -ne 0 ]; then
    if command -v sudo >/dev/null 2>&1; then SUDO="sudo"; else
      echo "Missing packages (${missing[*]}) and not root: install them and run again." >&2
      exit 1
    fi
  fi
  export DEBIAN_FRONTEND=noninteractive
  $SUDO apt-get update -qq
  $SUDO apt-get install -y -qq --no-install-recommends "${missing[@]}"
}

# True when this user may build: the build folder (or, before the first build,
# the checkout) and the build log beside it are writable.
tf_build_writable() {
  local d="$TF_BUILD"
  [ -e "$d" ] || d="$(dirname "$TF_BUILD")"
  [ -w "$d" ] || return 1
  [ ! -e "$TF_BUILD.log" ] || [ -w "$TF_BUILD.log" ]
}

tf_build() {
  if [ ! -f "$TF_BUILD/CMakeCache.txt" ]; then
    cmake -S "$TF_ROOT" -B "$TF_BUILD" -DCMAKE_BUILD_TYPE="$TF_BUILD_TYPE" "$@"
  fi
  cmake --build "$TF_BUILD" -j"$(nproc)"
}
