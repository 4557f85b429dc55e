#!/usr/bin/env bash
# Build and run every test (offscreen, each test with its own configuration folder).
source "$(dirname "$0")/scripts/common.sh"
tf_install_missing $TF_CHECK_PACKAGES
tf_build
cd "$TF_BUILD"
QT_QPA_PLATFORM=offscreen ctest --output-on-failure -j"$(nproc)" "$@"
