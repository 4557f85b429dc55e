#!/usr/bin/env bash
# The suite built with AddressSanitizer and UndefinedBehaviorSanitizer (in
# build-asan) and run offscreen: any report of either fails the run.
#   scripts/sanitize.sh                   the engine's and base libraries' tests (CI)
#   scripts/sanitize.sh all               every test
#   scripts/sanitize.sh -R find_command   any ctest arguments
# Leaks inside Qt's and the system libraries' own start-up are suppressed by
# scripts/lsan.supp (each entry says why); leaks of our code are not.
source "$(dirname "$0")/common.sh"
tf_install_missing
TF_BUILD="${TF_SANITIZE_BUILD:-$TF_ROOT/build-asan}"
if [ ! -f "$TF_BUILD/CMakeCache.txt" ]; then
  cmake -S "$TF_ROOT" -B "$TF_BUILD" -DCMAKE_BUILD_TYPE=RelWithDebInfo -DTF_SANITIZE=address,undefined >/dev/null
fi
# The engine and base tests, the program they start and the search tests; "all": everything.
args=("$@")
if [ "${1:-}" = "all" ]; then
  cmake --build "$TF_BUILD" -j"$(nproc)"
  args=("${@:2}")
else
  targets=(talvofinder talvofinder-app)
  for src in "$TF_ROOT"/tests/base/test_*.cpp; do targets+=("base_$(basename "$src" .cpp)"); done
  targets+=(app_test_search_job app_test_find_search app_test_find_command app_test_find_documents)
  cmake --build "$TF_BUILD" -j"$(nproc)" --target "${targets[@]}"
  [ ${#args[@]} -gt 0 ] || args=(-R "^base_|search_job|find_search|find_command|find_documents")
fi
# Whole stacks for leaks: the suppressions name the Qt function that made the object.
export ASAN_OPTIONS="detect_leaks=1:halt_on_error=1:exitcode=23:detect_stack_use_after_return=0:fast_unwind_on_malloc=0"
export LSAN_OPTIONS="suppressions=$TF_ROOT/scripts/lsan.supp:print_suppressions=0"
export UBSAN_OPTIONS="halt_on_error=1:print_stacktrace=1:exitcode=24"
cd "$TF_BUILD"
QT_QPA_PLATFORM=offscreen ctest --output-on-failure -j"$(nproc)" --timeout 600 "${args[@]}"
