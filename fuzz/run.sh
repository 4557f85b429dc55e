#!/usr/bin/env bash
# Builds the libFuzzer targets (clang, AddressSanitizer) into build-fuzz, makes
# each target's seed corpus and runs every target for TF_FUZZ_SECONDS (default
# 600) in turn. Usage: fuzz/run.sh [target ...]   (default: all of them)
# TF_FUZZ_JOBS (default: every core) limits the build's parallel jobs.
# A crash leaves crash-* in build-fuzz/out/<target>/; replay it with
# build-fuzz/<target> <file>.
source "$(dirname "$0")/../scripts/common.sh"
tf_install_missing clang libclang-rt-14-dev
B="$TF_ROOT/build-fuzz"
targets=("$@")
[ ${#targets[@]} -gt 0 ] || targets=(fuzz_xtree fuzz_node fuzz_expression fuzz_userdata fuzz_ignore fuzz_content fuzz_extract)
if [ ! -f "$B/CMakeCache.txt" ]; then
  CC=clang CXX=clang++ cmake -S "$TF_ROOT" -B "$B" -DTF_FUZZ=ON -DTF_BUILD_TESTS=OFF -DTF_SANITIZE=address \
    -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
fi
cmake --build "$B" -j"${TF_FUZZ_JOBS:-$(nproc)}" --target "${targets[@]}" >/dev/null
secs="${TF_FUZZ_SECONDS:-600}"
for t in "${targets[@]}"; do
  corpus="$B/corpus/$t"
  out="$B/out/$t"
  mkdir -p "$corpus" "$out"
  TF_FUZZ_SEEDS="$corpus" "$B/$t" >/dev/null 2>&1
  echo "== $t: $(ls "$corpus" | wc -l) inputs in the corpus, $secs s"
  # Leaks are errors too (AddressSanitizer's leak check runs at exit).
  (cd "$out" && "$B/$t" -max_total_time="$secs" -rss_limit_mb=2048 -timeout=10 -print_final_stats=1 \
      "$corpus" > "$out/log" 2>&1) || echo "   FAILED: see $out/log"
  grep -E "cov:" "$out/log" | tail -1 || true
  grep -E "^stat::(number_of_executed_units|average_exec_per_sec|peak_rss_mb)|ERROR|SUMMARY|crash-|leak-|timeout-" "$out/log" || true
done
