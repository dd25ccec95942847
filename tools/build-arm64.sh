#!/usr/bin/env bash
# Cross-builds the viewer and its tests for 64-bit ARM (arm64) on a Debian 12 x86-64 machine and
# runs the tests that need no window (ctest label "unit", Qt's offscreen platform) under qemu
# user-mode emulation.
#
#   bash tools/build-arm64.sh            set up, build build/arm64, run the unit tests
#   ORYX_ARM64_BUILD_DIR=dir bash tools/build-arm64.sh
#
# Set-up, done only for what is missing: the arm64 architecture is added to dpkg, the cross
# compiler, qemu-user and the arm64 development packages are installed. apt never removes a
# package here (--no-remove); it may upgrade a host library to the archive's current version,
# because multi-arch needs the amd64 and arm64 copies of a library at one version. Qwt is the exception: Debian 12's libqwt-qt5-dev and libqwt-qt5-6
# are not multi-arch, so their arm64 builds would replace the host's. Both packages are
# downloaded and unpacked into the build folder instead, and pkg-config is pointed there.
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/../scripts/common.sh"
cd "$REPO_ROOT"

BUILD_DIR=${ORYX_ARM64_BUILD_DIR:-build/arm64}
TRIPLET=aarch64-linux-gnu

SUDO=()
if [[ $(id -u) -ne 0 ]]; then
    SUDO=(sudo)
fi

# Host tools (cmake, ninja, moc/uic/rcc, the Roboto fonts copied into the resource bundle).
bash scripts/install-deps.sh

HOST_PACKAGES=(crossbuild-essential-arm64 qemu-user libeigen3-dev python3)
TARGET_PACKAGES=(
    qtbase5-dev libqt5opengl5-dev libqt5svg5-dev libhidapi-dev
    # Qwt's own run-time dependencies; Qwt itself is unpacked below.
    libqt5core5a libqt5gui5 libqt5widgets5 libqt5opengl5 libqt5svg5
)

if ! dpkg --print-foreign-architectures | grep -qx arm64; then
    echo "build-arm64: adding the arm64 architecture to dpkg"
    "${SUDO[@]}" dpkg --add-architecture arm64
    "${SUDO[@]}" apt-get update
fi

missing=()
for pkg in "${HOST_PACKAGES[@]}" "${TARGET_PACKAGES[@]/%/:arm64}"; do
    status=$(dpkg-query -W -f='${db:Status-Status}' "$pkg" 2>/dev/null || true)
    if [[ "$status" != "installed" ]]; then
        missing+=("$pkg")
    fi
done
if [[ ${#missing[@]} -gt 0 ]]; then
    echo "build-arm64: installing ${missing[*]}"
    # A fresh arm64 package list is needed if the architecture was added by someone else.
    "${SUDO[@]}" apt-get update
    "${SUDO[@]}" env DEBIAN_FRONTEND=noninteractive \
        apt-get install -y --no-install-recommends --no-remove "${missing[@]}"
fi

# Qwt for arm64, unpacked next to the build. The pkg-config file is rewritten to point there.
QWT_ROOT="$(realpath -m "$BUILD_DIR")/qwt-root"
QWT_PC_DIR="$QWT_ROOT/usr/lib/$TRIPLET/pkgconfig"
if [[ ! -f "$QWT_PC_DIR/Qt5Qwt6.pc" ]]; then
    echo "build-arm64: unpacking Qwt for arm64 into $QWT_ROOT"
    downloads=$(mktemp -d)
    # Downloaded as the calling user: apt's _apt user may not write into a private folder.
    (cd "$downloads" && apt-get download -o APT::Sandbox::User="$(id -un)" \
        libqwt-qt5-6:arm64 libqwt-qt5-dev:arm64)
    rm -rf "$QWT_ROOT"
    mkdir -p "$QWT_ROOT"
    for deb in "$downloads"/*.deb; do
        dpkg-deb -x "$deb" "$QWT_ROOT"
    done
    rm -rf "$downloads"
    # Qwt keeps its library in /usr/lib (not multi-arch), found there by the linker without -L.
    sed -i -e "s|^prefix=.*|prefix=$QWT_ROOT/usr|" \
           -e "s|^libdir=/usr/|libdir=\${prefix}/|" \
           -e "s|^includedir=/usr/|includedir=\${prefix}/|" \
           -e "s|^Libs: |Libs: -L\${libdir} |" "$QWT_PC_DIR/Qt5Qwt6.pc"
fi
qwt_lib=$(PKG_CONFIG_LIBDIR="$QWT_PC_DIR:/usr/lib/$TRIPLET/pkgconfig:/usr/share/pkgconfig" pkg-config --variable=libdir Qt5Qwt6)/libqwt-qt5.so
if ! file -L "$qwt_lib" | grep -q 'ARM aarch64'; then
    echo "build-arm64: $qwt_lib is not an arm64 library" >&2
    exit 1
fi

echo "build-arm64: configuring $BUILD_DIR"
configure "$BUILD_DIR" \
    -DCMAKE_TOOLCHAIN_FILE="$REPO_ROOT/cmake/toolchains/$TRIPLET.cmake" \
    -DORYX_CROSS_PKG_CONFIG_DIRS="$QWT_PC_DIR" \
    -DCMAKE_BUILD_TYPE=Release -DBUILD_TESTING=ON -DORYX_BUILD_BENCH=OFF -DORYX_SANITIZE=

start=$SECONDS
cmake --build "$BUILD_DIR" -j "$JOBS"
build_seconds=$((SECONDS - start))

# Check that what was built is what was asked for before running it.
viewer="$BUILD_DIR/app/SensorDataViewer"
if ! file -L "$viewer" | grep -q 'ARM aarch64'; then
    echo "build-arm64: $viewer is not an arm64 executable: $(file -L "$viewer")" >&2
    exit 1
fi

# Under Debian 12's qemu-user (7.2) a program cannot start another one through QProcess: Qt
# creates the child with clone(CLONE_PIDFD), which that qemu refuses with EINVAL. Test functions
# that start a process are left out of the emulated run; the rest of their executable runs.
declare -A NEEDS_PROCESS=(
    [tst_csvwriter]="killedWriterLeavesOnlyCompleteRows"   # kills a writing child process
    # run oryx-imu-noise
    [imunoise_tst_simulated]="toolWritesItsFilesForARecorderFile toolRefusesAFileThatIsNoRecording toolRefusesTooManyMissingSamples"
)
apart_regex="^($(IFS='|'; echo "${!NEEDS_PROCESS[*]}"))\$"

echo "build-arm64: running the unit tests under $(command -v qemu-aarch64)"
start=$SECONDS
status=0
ctest --test-dir "$BUILD_DIR" -L unit -E "$apart_regex" --output-on-failure --no-tests=error \
    -j "$JOBS" 2>&1 | tee "$BUILD_DIR/ctest-unit.log"
[[ ${PIPESTATUS[0]} -eq 0 ]] || status=1
summary=$(grep -E 'tests passed, [0-9]+ tests failed out of [0-9]+' "$BUILD_DIR/ctest-unit.log" |
          tail -n 1 || true)

# Each executable set apart runs every test function but the listed ones, with ctest's command
# (the emulator included), environment and folder for it.
for exe in "${!NEEDS_PROCESS[@]}"; do
    echo "=== $exe without ${NEEDS_PROCESS[$exe]}"
    log="$BUILD_DIR/$exe-emulated.log"
    ctest --test-dir "$BUILD_DIR" -R "^$exe\$" --show-only=json-v1 |
        python3 -c '
import json, os, subprocess, sys
test = json.load(sys.stdin)["tests"][0]
props = {p["name"]: p["value"] for p in test["properties"]}
env = dict(os.environ, **dict(e.split("=", 1) for e in props.get("ENVIRONMENT", [])))
run = lambda *args: subprocess.run(test["command"] + list(args), env=env, text=True,
                                   cwd=props.get("WORKING_DIRECTORY"), capture_output=True)
left_out = sys.argv[1].split()
functions = [f[:-2] for f in run("-functions").stdout.split() if f.endswith("()")]
missing = [f for f in left_out if f not in functions]
if missing:
    sys.exit(f"no test function {missing} any more: update NEEDS_PROCESS")
result = run(*[f for f in functions if f not in left_out])
print(result.stdout + result.stderr)
sys.exit(result.returncode)' "${NEEDS_PROCESS[$exe]}" > "$log" 2>&1 || status=1
    grep -E '^(FAIL|Totals)' "$log" || cat "$log"
    summary+="; $exe without ${NEEDS_PROCESS[$exe]}: $(grep -E '^Totals' "$log" || echo failed)"
done
test_seconds=$((SECONDS - start))

echo
echo "build-arm64: build ${build_seconds}s, tests ${test_seconds}s under emulation: ${summary:-no summary}"
exit "$status"
