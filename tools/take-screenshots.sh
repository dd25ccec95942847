#!/usr/bin/env bash
# Takes the README's pictures of the viewer running on the simulated camera, in a virtual X
# server. Needs a configured build (scripts/run-viewer.sh or scripts/run-tests.sh made one).
#
#   tools/take-screenshots.sh [build-dir]
set -euo pipefail
cd "$(dirname "$0")/.."
build=${1:-build/release}
cmake --build "$build" --target oryx_screenshot oryx_calibration_run -j2
mkdir -p docs
xvfb-run -a -s "-screen 0 1600x1000x24" "$build/tools/screenshot/oryx_screenshot" docs/main-window.png 12
echo "wrote docs/main-window.png"
# A short recording made by the same run, for a look at the CSV format.
recordings=$(mktemp -d)
xvfb-run -a -s "-screen 0 1600x1000x24" "$build/tools/screenshot/oryx_screenshot" \
    "$recordings/window.png" 5 "$recordings"
head -3 "$recordings"/*.csv
# A whole magnetometer calibration on a tumbling camera: the dialog after storing.
ORYX_SIM="model=ORYX_D motion=tumbling" xvfb-run -a -s "-screen 0 1600x1000x24" \
    "$build/tools/screenshot/oryx_calibration_run" docs/calibration-dialog.png 40
echo "wrote docs/calibration-dialog.png"
