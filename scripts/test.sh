#!/usr/bin/env bash
# Builds and runs every test:
#   1. the desktop build (build/dev) and its whole CTest suite;
#   2. the same suite built with AddressSanitizer + UndefinedBehaviorSanitizer (build/asan);
#   3. the same suite built with ThreadSanitizer (build/tsan): the listener thread and the user
#      interface thread share the records and the toolkit's queue, and a data race fails the run;
#   4. the libFuzzer harnesses (clang, build/fuzz), each fuzzing for a bounded time.
# Ends with the line "N passed, N failed" over all four; exits non-zero on any failure.
set -uo pipefail
cd "$(dirname "$0")/.."

scripts/deps.sh || { echo "0 passed, 1 failed"; exit 1; }

jobs=${JOBS:-$(nproc)}
total_passed=0
total_failed=0

# run_suite <preset> [build target] [ctest args...]
run_suite() {
  local preset=$1 target=$2
  shift 2
  echo "=== $preset: configure and build"
  if ! cmake --preset "$preset" >/dev/null ||
     ! cmake --build --preset "$preset" -j "$jobs" ${target:+--target "$target"}; then
    echo "=== $preset: build FAILED"
    total_failed=$((total_failed + 1))
    return
  fi
  echo "=== $preset: test"
  local log
  log=$(mktemp)
  ctest --preset "$preset" -j "$jobs" "$@" 2>&1 | tee "$log"
  local line
  line=$(grep -E '[0-9]+% tests passed, [0-9]+ tests? failed out of [0-9]+' "$log" | tail -n 1)
  if [ -z "$line" ]; then
    echo "=== $preset: no test summary from ctest"
    total_failed=$((total_failed + 1))
  else
    local failed all
    failed=$(sed -E 's/.* ([0-9]+) tests? failed out of ([0-9]+).*/\1/' <<<"$line")
    all=$(sed -E 's/.* ([0-9]+) tests? failed out of ([0-9]+).*/\2/' <<<"$line")
    total_passed=$((total_passed + all - failed))
    total_failed=$((total_failed + failed))
  fi
  rm -f "$log"
}

run_suite dev ""
run_suite asan ""
run_suite tsan ""
run_suite fuzz fuzzers -L fuzz

echo "${total_passed} passed, ${total_failed} failed"
[ "$total_failed" -eq 0 ]
