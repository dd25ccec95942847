#!/usr/bin/env bash
# Takes the README's pictures of the viewer running on the simulated camera, in a virtual X
# server. Needs a configured build (scripts/run-viewer.sh or scripts/run-tests.sh made one).
#
#   tools/take-screenshots.sh [build-dir]
set -euo pipefail
cd "$(dirname "$0")/.."
build=${1:-build/release}
cmake --build "$build" --target oryx_screenshot oryx_calibration_run oryx_sim_recording \
    oryx_imu_noise_shot oryx-imu-noise -j2
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
# The IMU Noise window on three hours of a still camera (about 1.3 GB of CSV, made on the virtual
# clock in about a minute), and the command-line tool on the same file.
noise=$(mktemp -d)
recording="$noise/20261124_080000-ORYX_D-sn_31000017-ORYXSensorsData.csv"
"$build/tools/screenshot/oryx_sim_recording" "$recording" 10800 \
    "motion=still gyro_noise=3.5e-5,5e-5,7e-5 gyro_walk=1.5e-5,2.5e-5,4e-5 acc_noise=8e-4,1.1e-3,1.5e-3 acc_walk=2e-4,3e-4,4.5e-4"
xvfb-run -a -s "-screen 0 1600x1000x24" "$build/tools/screenshot/oryx_imu_noise_shot" \
    "$recording" docs/imu-noise-window.png
echo "wrote docs/imu-noise-window.png"
"$build/imunoise/oryx-imu-noise" "$recording" --kalibr "$noise/imu.yaml" --json "$noise/noise.json"
cat "$noise/imu.yaml" "$noise/noise.json"
rm -r "$noise"
