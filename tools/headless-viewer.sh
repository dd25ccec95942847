# Starts the viewer the way scripts/run-viewer.sh does without a display: under xvfb-run, on the
# simulated cameras that ORYX_SIM describes. Sourced by the measuring tools, not run.
#
#   start_headless_viewer <viewer executable>
#
# sets viewer_pid to the viewer's process id and stops the viewer when the calling script exits.

start_headless_viewer() {
    local viewer=$1
    xvfb-run -a -s "-screen 0 1920x1080x24" "$viewer" >/dev/null 2>&1 &
    viewer_runner=$!
    viewer_pid=
    trap stop_headless_viewer EXIT

    # xvfb-run starts the viewer as its own child once the server is up. Its short-lived
    # subshells carry the viewer's path in their command line too, so the child is known by its
    # executable.
    local viewer_exe child
    viewer_exe=$(realpath "$viewer")
    for _ in $(seq 100); do
        for child in $(pgrep -P "$viewer_runner"); do
            [[ $(readlink "/proc/$child/exe" 2>/dev/null) == "$viewer_exe" ]] && viewer_pid=$child
        done
        [[ -n $viewer_pid ]] && return 0
        sleep 0.1
    done
    echo "$(basename "$0"): the viewer did not start" >&2
    return 1
}

stop_headless_viewer() {
    [[ -n ${viewer_pid:-} ]] && kill "$viewer_pid" 2>/dev/null
    wait "$viewer_runner" 2>/dev/null || true
}
