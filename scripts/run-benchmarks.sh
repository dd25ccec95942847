#!/usr/bin/env bash
# Sets up the machine, builds the benchmarks (Release) and runs every one of them.
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/common.sh"
cd "$REPO_ROOT"

bash scripts/install-deps.sh

BUILD_DIR=build/release
configure "$BUILD_DIR" -DCMAKE_BUILD_TYPE=Release -DBUILD_TESTING=OFF -DORYX_BUILD_BENCH=ON
cmake --build "$BUILD_DIR" -j "$JOBS"

mapfile -t benches < <(find "$BUILD_DIR/bench" -path '*/CMakeFiles' -prune -o \
    -type f -executable -print 2>/dev/null | sort)

if [[ ${#benches[@]} -eq 0 ]]; then
    echo "run-benchmarks: no benchmark executables under $BUILD_DIR/bench"
    exit 0
fi

status=0
for bench in "${benches[@]}"; do
    echo "=== $(basename "$bench")"
    if ! "$bench"; then
        echo "run-benchmarks: $(basename "$bench") FAILED"
        status=1
    fi
done
exit "$status"
