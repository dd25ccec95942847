#!/usr/bin/env bash
# Resident memory of the viewer process over time, started the way scripts/run-viewer.sh starts
# it without a display: the Release build under xvfb-run. Prints the resident size (VmRSS) every
# ten seconds and the growth between two moments after the start.
#
#   tools/measure-viewer-memory.sh [from s (90)] [to s (210)] [build dir (build/release)]
#
# The environment is passed on, so ORYX_SIM chooses the cameras, for example
#   ORYX_SIM="model=ORYX_D imu_rate=4000" tools/measure-viewer-memory.sh
# The machine's load average is printed with the figures: on a shared machine the sampling
# thread may fall behind a high IMU rate, and then fills its series more slowly.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
source tools/headless-viewer.sh

from=${1:-90}
to=${2:-210}
build=${3:-build/release}
viewer="$build/app/SensorDataViewer"
if [[ ! -x "$viewer" ]]; then
    echo "measure-viewer-memory: no $viewer; build it with: bash scripts/run-viewer.sh" >&2
    exit 2
fi

resident_kib() { awk '/^VmRSS:/ { print $2 }' /proc/"$viewer_pid"/status; }

start_headless_viewer "$viewer"
started=$(date +%s.%N)
echo "ORYX_SIM=\"${ORYX_SIM:-}\"  viewer $viewer, pid $viewer_pid"
at_from=
for ((t = 10; t <= to; t += 10)); do
    sleep "$(awk -v s="$started" -v t="$t" -v now="$(date +%s.%N)" 'BEGIN { d = s + t - now; print (d > 0 ? d : 0) }')"
    kill -0 "$viewer_pid" 2>/dev/null || { echo "measure-viewer-memory: the viewer ended early" >&2; exit 1; }
    kib=$(resident_kib)
    printf "  %4d s  %8.1f MiB\n" "$t" "$(awk -v k="$kib" 'BEGIN { print k / 1024 }')"
    ((t == from)) && at_from=$kib
    ((t == to)) && at_to=$kib
done
awk -v a="$at_from" -v b="$at_to" -v from="$from" -v to="$to" -v load="$(cut -d' ' -f1-3 /proc/loadavg)" 'BEGIN {
    printf "resident %.1f MiB at %d s, %.1f MiB at %d s: %+.1f MiB  (load average %s)\n",
           a / 1024, from, b / 1024, to, (b - a) / 1024, load
}'
