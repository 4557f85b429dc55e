#!/usr/bin/env bash
# Build if needed and start Talvo Finder; "./run.sh <command> --key value ..." runs a command.
source "$(dirname "$0")/scripts/common.sh"
tf_install_missing
if tf_build_writable; then
  [ -x "$TF_BUILD/talvofinder" ] || echo "Building Talvo Finder (log: $TF_BUILD.log) ..."
  tf_build > "$TF_BUILD.log" 2>&1 || { cat "$TF_BUILD.log"; exit 1; }
elif [ ! -x "$TF_BUILD/talvofinder" ]; then
  echo "No build in $TF_BUILD and $(id -un) cannot write one: run ./run.sh once as its owner." >&2
  exit 1
fi
# Another user (say, one without rights to the build) runs the existing build as it is.
exec "$TF_BUILD/talvofinder" "$@"
