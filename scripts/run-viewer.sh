#!/usr/bin/env bash
# Sets up the machine, builds the viewer (Release) and launches it on the simulated camera.
# Extra arguments are passed to the viewer.
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/common.sh"
cd "$REPO_ROOT"

bash scripts/install-deps.sh

BUILD_DIR=build/release
configure "$BUILD_DIR" -DCMAKE_BUILD_TYPE=Release -DBUILD_TESTING=OFF
cmake --build "$BUILD_DIR" --target SensorDataViewer -j "$JOBS"

VIEWER="$BUILD_DIR/app/SensorDataViewer"
if [[ -z "${DISPLAY:-}" && -z "${WAYLAND_DISPLAY:-}" ]]; then
    echo "run-viewer: no DISPLAY set; running the viewer on a virtual X server (xvfb-run)."
    exec xvfb-run -a -s "-screen 0 1920x1080x24" "$VIEWER" "$@"
fi
exec "$VIEWER" "$@"
