#!/bin/sh
# Installs what is missing, builds and runs every test: all test programs under AddressSanitizer and
# UndefinedBehaviorSanitizer, the concurrent ones again under ThreadSanitizer, and the program as
# users get it in a real browser. The last line counts them.
set -eu
cd "$(dirname "$0")"
. scripts/packages.sh

# shellcheck disable=SC2086 # a list of words
need_packages $BUILD_PACKAGES libgtest-dev clang-format python3 chromium node:nodejs npm:npm
# In a shell of its own, because it exits where it cannot install.
(need_packages openssl python3-aiosmtpd) || echo "The tests with a real mail server are skipped."

passed=0 failed=0
count() { # NAME PASSED FAILED
    echo "$1: $2 passed, $3 failed"
    passed=$((passed + $2)) failed=$((failed + $3))
}

# run_ctest NAME PRESET [CTEST OPTIONS...]: adds the tests of one build tree to the count.
run_ctest() {
    name=$1 preset=$2
    shift 2
    log=build-$preset/test-output.log
    # Without fixed addresses the sanitizers' shadow memory may not find its place.
    # Most tests wait more than they compute, so there may be more of them than processors.
    setarch -R ctest --test-dir "build-$preset" -j "$(($(nproc) * 2))" --output-on-failure "$@" >"$log" 2>&1 || true
    grep -A 200 '^The following tests FAILED\|\*\*\*Failed\|\*\*\*Exception\|\*\*\*Timeout' "$log" | head -n 400 || true
    total=$(sed -n 's/.* tests failed out of \([0-9]*\)$/\1/p' "$log")
    bad=$(sed -n 's/.*, \([0-9]*\) tests failed out of .*/\1/p' "$log")
    if [ -z "$total" ] || [ "$total" -eq 0 ]; then
        tail -n 30 "$log"
        count "$name" 0 1
    else
        count "$name" $((total - bad)) "$bad"
    fi
}

echo "Building the program, and each header on its own ..."
build release quillmarsh all_verify_interface_header_sets
echo "Building the tests with AddressSanitizer and UndefinedBehaviorSanitizer ..."
build asan
run_ctest "unit tests (address, undefined)" asan
echo "Building the concurrent tests with ThreadSanitizer ..."
build tsan concurrent_tests
run_ctest "concurrent tests (thread)" tsan -L concurrent

echo "Driving the program in Chromium ..."
log=$(mktemp)
if tests/browser/run.sh build/quillmarsh >"$log" 2>&1; then :; fi
cat "$log"
browser=$(sed -n 's/^browser: \([0-9]*\) passed, \([0-9]*\) failed$/\1 \2/p' "$log")
rm -f "$log"
# shellcheck disable=SC2086 # two numbers
if [ -n "$browser" ]; then count "browser tests" $browser; else count "browser tests" 0 1; fi

echo "$passed passed, $failed failed"
[ "$failed" -eq 0 ]
