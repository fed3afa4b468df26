#!/usr/bin/env bash
# Installs what is missing, builds Vonel and runs every test: the unit and
# integration tests, the same again under AddressSanitizer and
# UndefinedBehaviorSanitizer, and a short run of each fuzz target.
# Fails when any of them fails.
set -euo pipefail
cd "$(dirname "$0")/.."
tools/install-deps.sh
jobs=$(nproc)
export CCACHE_DIR=${CCACHE_DIR:-$HOME/.cache/vonel-ccache}
export QT_QPA_PLATFORM=offscreen

run_suite() {
  local preset=$1
  echo "=== $preset build"
  cmake --preset "$preset" -DVONEL_GUI=ON -DVONEL_TESTS=ON >/dev/null
  cmake --build "build/$preset" -j"$jobs"
  echo "=== $preset tests"
  ctest --preset "$preset" -j"$jobs"
}

run_suite default
ASAN_OPTIONS="detect_leaks=1:abort_on_error=1:suppressions=$PWD/tools/lsan.supp" \
  LSAN_OPTIONS="suppressions=$PWD/tools/lsan.supp:print_suppressions=0" \
  run_suite asan

echo "=== fuzz targets"
cmake --preset fuzz >/dev/null
cmake --build build/fuzz -j"$jobs"
seconds=${VONEL_FUZZ_SECONDS:-20}
for target in build/fuzz/fuzz/fuzz_*; do
  [ -x "$target" ] || continue
  name=$(basename "$target")
  corpus=$(mktemp -d)
  seeds=fuzz/corpus/$name
  echo "--- $name (${seconds}s)"
  "$target" -max_total_time="$seconds" -timeout=10 -rss_limit_mb=2048 -print_final_stats=0 \
    "$corpus" $( [ -d "$seeds" ] && echo "$seeds" ) 2>&1 | tail -n 3
  rm -rf "$corpus"
done
echo "=== all tests passed"
