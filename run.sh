#!/usr/bin/env bash
# Build if needed and start Talvo Finder; "./run.sh <command> --key value ..." runs a command.
source "$(dirname "$0")/scripts/common.sh"
tf_install_missing
[ -x "$TF_BUILD/talvofinder" ] || echo "Building Talvo Finder (log: $TF_BUILD.log) ..."
tf_build > "$TF_BUILD.log" 2>&1 || { cat "$TF_BUILD.log"; exit 1; }
exec "$TF_BUILD/talvofinder" "$@"
