#!/usr/bin/env bash
# Runs one test program on a virtual X server of its own: window tests then run side by side
# without sharing focus, grabs or a display number. Usage: on-own-display.sh program [args...]
set -uo pipefail

work=$(mktemp -d)
xvfb=
cleanup() {
    if [[ -n $xvfb ]]; then
        kill "$xvfb" 2>/dev/null
        wait "$xvfb" 2>/dev/null
    fi
    rm -rf "$work"
}
trap cleanup EXIT

# The server picks a free display itself and writes its number to the pipe once it accepts
# connections, so nothing here guesses a number or waits for a while.
mkfifo "$work/ready"
Xvfb -displayfd 3 -screen 0 1920x1080x24 -nolisten tcp 3>"$work/ready" 2>"$work/xvfb.log" &
xvfb=$!
read -r display <"$work/ready"
if [[ -z ${display:-} ]]; then
    echo "on-own-display: the virtual X server did not start:" >&2
    cat "$work/xvfb.log" >&2
    exit 1
fi

DISPLAY=":$display" "$@" &
program=$!
# A test run that is stopped (ctest's time limit) stops the program and the server with it.
trap 'kill "$program" 2>/dev/null; exit 143' TERM INT
wait "$program"
