#!/usr/bin/env bash
# CPU of the whole viewer process, started the way scripts/run-viewer.sh starts it without a
# display: the Release build under xvfb-run on the default simulated camera. After a warm-up the
# utime + stime of the process (all its threads, Mesa's included) are read twice from
# /proc/<pid>/stat, and per thread from /proc/<pid>/task, to give the share of one core.
#
#   tools/measure-viewer-cpu.sh [warm-up seconds (60)] [measured seconds (30)] [build dir]
#
# The environment is passed on, so ORYX_GL_RENDERING=hardware|software forces the 3D view's
# settings and ORYX_SIM chooses other cameras. The machine's load average is printed with the
# figures: other work on a shared machine slows the viewer's threads down and shows up in them.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
source tools/headless-viewer.sh

warmup=${1:-60}
measured=${2:-30}
build=${3:-build/release}
viewer="$build/app/SensorDataViewer"
if [[ ! -x "$viewer" ]]; then
    echo "measure-viewer-cpu: no $viewer; build it with: bash scripts/run-viewer.sh" >&2
    exit 2
fi

start_headless_viewer "$viewer"
pid=$viewer_pid

# utime + stime in clock ticks: fields 14 and 15 of a stat line, 12 and 13 after the name,
# which may hold blanks and ends at the last ')'.
ticks_of() { sed 's/.*) //' "$1" | awk '{ print $12 + $13 }'; }

# One line per thread: "<tid> <ticks> <name>".
thread_ticks() {
    local task
    for task in /proc/"$pid"/task/*; do
        [[ -r $task/stat ]] || continue
        echo "${task##*/} $(ticks_of "$task/stat" 2>/dev/null || echo 0) $(tr ' ' '_' <"$task/comm" 2>/dev/null)"
    done
}

sleep "$warmup"
kill -0 "$pid" 2>/dev/null || { echo "measure-viewer-cpu: the viewer ended early" >&2; exit 1; }
threads_before=$(thread_ticks)
before=$(ticks_of /proc/"$pid"/stat)
start=$(date +%s.%N)
sleep "$measured"
after=$(ticks_of /proc/"$pid"/stat)
end=$(date +%s.%N)
threads_after=$(thread_ticks)
load=$(cut -d' ' -f1-3 /proc/loadavg)

hz=$(getconf CLK_TCK)
awk -v b="$before" -v a="$after" -v hz="$hz" -v s="$start" -v e="$end" -v load="$load" \
    -v rendering="${ORYX_GL_RENDERING:-detect}" 'BEGIN {
    printf "rendering=%s  process CPU %.1f %% of one core over %.1f s  (load average %s)\n",
           rendering, 100 * (a - b) / hz / (e - s), e - s, load
}'

# Per thread, grouped by name: the GUI thread is the one whose id is the process id.
join <(sort <<<"$threads_before") <(sort <<<"$threads_after") |
    awk -v pid="$pid" -v hz="$hz" -v secs="$measured" '{
        name = ($1 == pid) ? "GUI thread" : $3
        sub(/-[0-9]+$/, "", name)  # llvmpipe-0, llvmpipe-1, ... count as one
        share[name] += 100 * ($4 - $2) / hz / secs
    } END {
        for (n in share) printf "  %-20s %6.1f %%\n", n, share[n]
    }' | sort
