#!/usr/bin/env bash
# Sets up the machine, builds the test suite and runs it; window tests start virtual X servers:
#   build/test  Debug
#   build/asan  AddressSanitizer + UndefinedBehaviorSanitizer (skipped with ORYX_SKIP_SANITIZERS=1)
#   build/tsan  ThreadSanitizer                              (skipped with ORYX_SKIP_SANITIZERS=1)
# Exits non-zero if any build or test run fails.
set -uo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/common.sh"
cd "$REPO_ROOT"

bash scripts/install-deps.sh || exit 1

# The suites build the tests only: no benchmarks, no developer tools. Warnings are errors here,
# so that a new one fails CI (release and package builds leave them warnings).
SUITE_FLAGS=(-DBUILD_TESTING=ON -DORYX_BUILD_BENCH=OFF -DORYX_BUILD_TOOLS=OFF -DORYX_WERROR=ON)
# Sanitizer builds are optimised lightly, fast enough to run. Line tables (-g1) give their
# reports file and line for every frame at a fraction of the compile time of full debug info.
SANITIZER_FLAGS=(-DCMAKE_BUILD_TYPE=RelWithDebInfo "-DCMAKE_CXX_FLAGS_RELWITHDEBINFO=-O1 -g1")

summary=()
total_passed=0
total_failed=0
status=0

# run_suite <label> <build-dir> <cmake args...>
run_suite() {
    local label="$1" dir="$2"
    shift 2
    local start=$SECONDS log="$dir/ctest.log"

    echo
    echo "=== [$label] configure and build in $dir"
    if ! configure "$dir" "${SUITE_FLAGS[@]}" "$@" || ! cmake --build "$dir" -j "$JOBS"; then
        summary+=("$(printf '%-6s BUILD FAILED (%ds)' "$label" $((SECONDS - start)))")
        status=1
        return
    fi

    echo "=== [$label] run tests"
    # Window tests start a virtual X server each (tests/support/on-own-display.sh).
    ctest --test-dir "$dir" --output-on-failure --no-tests=error -j "$JOBS" 2>&1 | tee "$log"
    local rc=${PIPESTATUS[0]}

    local line failed=0 total=0
    line=$(grep -E 'tests failed out of [0-9]+' "$log" | tail -n 1)
    if [[ $line =~ ([0-9]+)\ tests\ failed\ out\ of\ ([0-9]+) ]]; then
        failed=${BASH_REMATCH[1]}
        total=${BASH_REMATCH[2]}
    fi
    total_passed=$((total_passed + total - failed))
    total_failed=$((total_failed + failed))

    local verdict=ok
    if [[ $rc -ne 0 ]]; then
        verdict=FAILED
        status=1
    fi
    summary+=("$(printf '%-6s %-6s %d/%d tests passed (%ds)' "$label" "$verdict" \
        $((total - failed)) "$total" $((SECONDS - start)))")
}

run_suite debug build/test -DCMAKE_BUILD_TYPE=Debug -DORYX_SANITIZE=

if [[ "${ORYX_SKIP_SANITIZERS:-0}" != "1" ]]; then
    run_suite asan build/asan -DORYX_SANITIZE=address "${SANITIZER_FLAGS[@]}"
    run_suite tsan build/tsan -DORYX_SANITIZE=thread "${SANITIZER_FLAGS[@]}"
else
    summary+=("sanitizer builds skipped (ORYX_SKIP_SANITIZERS=1)")
fi

echo
echo "=== Summary"
for line in "${summary[@]}"; do
    echo "  $line"
done
echo "Total: $total_passed passed, $total_failed failed"
exit "$status"
