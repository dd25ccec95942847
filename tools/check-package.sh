#!/usr/bin/env bash
# Checks the Debian package the way a user meets it, on this machine:
#   1. apt-get install ./<deb> (never removing a package), and the installed files
#   2. the desktop sees the MIME type of recordings, and the menu entry names the window class
#   3. /usr/bin/SensorDataViewer starts on the simulated camera under Xvfb, shows a drawn main
#      window, and exits with status 0 when that window is closed as a window manager would
#   4. apt-get remove and purge leave no file of the package behind
#
#   bash tools/check-package.sh [package.deb]    (default: the one in build/package)
#
# Needs root (or sudo). Refuses to run if the package is already installed, and removes it
# again whatever happens. Prints the main window to build/package/installed-main-window.png.
set -uo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

deb=${1:-$(ls -t build/package/sensor-data-viewer_*.deb 2>/dev/null | head -n 1)}
if [[ -z "$deb" || ! -f "$deb" ]]; then
    echo "check-package: no package; build it with: bash scripts/build-package.sh" >&2
    exit 2
fi
deb=$(realpath "$deb")
pkg=$(dpkg-deb -f "$deb" Package)

SUDO=()
[[ $(id -u) -ne 0 ]] && SUDO=(sudo)

installed() {
    [[ "$(dpkg-query -W -f='${db:Status-Status}' "$pkg" 2>/dev/null)" == installed ]]
}
if installed; then
    echo "check-package: $pkg is installed already; remove it first" >&2
    exit 2
fi

# The helpers: a virtual X server, python-xlib to find and close the window, gio for MIME types.
helpers=()
for tool in xvfb xauth python3 python3-xlib libglib2.0-bin; do
    [[ "$(dpkg-query -W -f='${db:Status-Status}' "$tool" 2>/dev/null)" == installed ]] ||
        helpers+=("$tool")
done
if [[ ${#helpers[@]} -gt 0 ]]; then
    "${SUDO[@]}" apt-get update
    "${SUDO[@]}" env DEBIAN_FRONTEND=noninteractive \
        apt-get install -y --no-install-recommends --no-remove "${helpers[@]}" || exit 1
fi

passed=0
failed=0
check() {  # check <description> <command...>
    local what="$1"
    shift
    if "$@"; then
        echo "  ok    $what"
        passed=$((passed + 1))
    else
        echo "  FAIL  $what"
        failed=$((failed + 1))
    fi
}

work=$(mktemp -d)
cleanup() {
    if installed; then
        "${SUDO[@]}" env DEBIAN_FRONTEND=noninteractive apt-get purge -y "$pkg" >/dev/null 2>&1
    fi
    rm -rf "$work"
}
trap cleanup EXIT

echo "=== install $deb"
"${SUDO[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -y --no-remove "$deb" ||
    { echo "check-package: apt-get install failed" >&2; exit 1; }
check "$pkg is installed" installed
dpkg -L "$pkg" > "$work/files"
echo "files of $pkg:"
sed 's/^/    /' "$work/files"

only_the_programs() {
    local path elf=()
    while read -r path; do
        [[ -f "$path" ]] && file -b "$path" | grep -q '^ELF' && elf+=("$path")
    done < "$work/files"
    [[ "${elf[*]}" == "/usr/bin/SensorDataViewer /usr/bin/oryx-imu-noise" ]] ||
        { echo "    programs: ${elf[*]}"; return 1; }
}
check "the programs in the package are the viewer and oryx-imu-noise" only_the_programs
check "oryx-imu-noise answers --help" /usr/bin/oryx-imu-noise --help
refuses_non_recording() {
    printf 'name,value\nalpha,1\n' > "$work/notes.csv"
    local status=0
    /usr/bin/oryx-imu-noise "$work/notes.csv" 2> "$work/imu-noise.err" || status=$?
    [[ $status -eq 1 ]] && grep -q 'not a sensor recording header' "$work/imu-noise.err"
}
check "oryx-imu-noise refuses a file that is not a recording" refuses_non_recording

desktop=/usr/share/applications/com.brindlewick.SensorDataViewer.desktop
check "menu entry installed" test -f "$desktop"
check "icon installed for the menu" test -f /usr/share/icons/hicolor/48x48/apps/com.brindlewick.SensorDataViewer.png

# A recording, named as the recorder names them, and any other CSV file.
recording="$work/20261123_141500-ORYX_D-sn_31000017-ORYXSensorsData.csv"
printf 'idx,accX[m/s^2],accY[m/s^2],accZ[m/s^2]\n0,0.1,0.2,9.8\n' > "$recording"
cp "$recording" "$work/other.csv"
content_type() { gio info -a standard::content-type "$1" | sed -n 's/.*standard::content-type: //p'; }
is_type() { local got; got=$(content_type "$1"); [[ "$got" == "$2" ]] || { echo "    $1: $got"; return 1; }; }
check "a recording is text/x-oryx-sensors-data" is_type "$recording" text/x-oryx-sensors-data
check "another CSV file stays text/csv" is_type "$work/other.csv" text/csv
check "the menu entry is registered for recordings" \
    grep -q '^text/x-oryx-sensors-data=.*com.brindlewick.SensorDataViewer.desktop' \
    /usr/share/applications/mimeinfo.cache

echo "=== run /usr/bin/SensorDataViewer under Xvfb"
wm_class=$(sed -n 's/^StartupWMClass=//p' "$desktop")
mkdir -m 700 "$work/home" "$work/runtime"
shot=build/package/installed-main-window.png
HOME="$work/home" XDG_RUNTIME_DIR="$work/runtime" \
    xvfb-run -a -s "-screen 0 1600x1000x24" \
    /usr/bin/python3 - /usr/bin/SensorDataViewer "$wm_class" "$shot" > "$work/run.log" 2>&1 <<'EOF'
# Starts the program, waits for its main window, lets the simulated camera stream for a few
# seconds, saves the window's pixels, then asks the window to close (WM_DELETE_WINDOW, as a
# window manager's close button does) and reports how the program ended.
import struct, subprocess, sys, time, zlib
from Xlib import X, display, protocol

program, wm_class, shot = sys.argv[1:4]
proc = subprocess.Popen([program])
d = display.Display()
root = d.screen().root

def main_window():
    best = None
    for w in root.query_tree().children:
        try:
            cls = w.get_wm_class()
            if not cls or cls[1] != wm_class or w.get_attributes().map_state != X.IsViewable:
                continue
            g = w.get_geometry()
        except Exception:
            continue
        if best is None or g.width * g.height > best[1]:
            best = (w, g.width * g.height)
    return best[0] if best else None

window = None
deadline = time.time() + 60
while window is None and time.time() < deadline and proc.poll() is None:
    time.sleep(0.5)
    window = main_window()
if window is None:
    print(f"no mapped window of class {wm_class}; program status {proc.poll()}")
    proc.kill()
    sys.exit(1)
print(f"window: class {window.get_wm_class()} title {window.get_wm_name()!r}")

time.sleep(8)  # live data from the simulated camera
if proc.poll() is not None:
    print(f"program ended by itself with status {proc.returncode}")
    sys.exit(1)

g = window.get_geometry()
pixels = window.get_image(0, 0, g.width, g.height, X.ZPixmap, 0xFFFFFFFF).data
colours = len(set(memoryview(pixels).cast("I")))
print(f"window {g.width}x{g.height}, {colours} distinct colours")
rgb = bytearray(g.width * g.height * 3)
rgb[0::3], rgb[1::3], rgb[2::3] = pixels[2::4], pixels[1::4], pixels[0::4]
rows = b"".join(b"\0" + bytes(rgb[y * g.width * 3:(y + 1) * g.width * 3]) for y in range(g.height))
def chunk(kind, data):
    return struct.pack(">I", len(data)) + kind + data + struct.pack(">I", zlib.crc32(kind + data))
with open(shot, "wb") as f:
    f.write(b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", struct.pack(">IIBBBBB", g.width, g.height, 8, 2, 0, 0, 0))
            + chunk(b"IDAT", zlib.compress(rows, 6)) + chunk(b"IEND", b""))

protocols = d.intern_atom("WM_PROTOCOLS")
delete = d.intern_atom("WM_DELETE_WINDOW")
window.send_event(protocol.event.ClientMessage(window=window, client_type=protocols,
                                               data=(32, [delete, X.CurrentTime, 0, 0, 0])))
d.flush()
try:
    status = proc.wait(timeout=30)
except subprocess.TimeoutExpired:
    print("still running 30 s after its window was closed")
    proc.kill()
    sys.exit(1)
print(f"exit status {status}")
sys.exit(0 if status == 0 and colours >= 64 else 1)
EOF
run_status=$?
sed 's/^/    /' "$work/run.log"
check "started from /usr/bin, showed a drawn main window, closed with status 0" test "$run_status" -eq 0

echo "=== remove and purge"
"${SUDO[@]}" env DEBIAN_FRONTEND=noninteractive apt-get remove -y "$pkg" >/dev/null
check "$pkg is no longer installed after apt-get remove" bash -c "! dpkg-query -W -f='\${db:Status-Status}' $pkg 2>/dev/null | grep -q installed"
left_behind() {  # files and folders of the package that still exist and no other package owns
    local path left=()
    while read -r path; do
        [[ "$path" == /. ]] && continue
        if [[ -e "$path" ]] && ! dpkg -S "$path" >/dev/null 2>&1; then left+=("$path"); fi
    done < "$work/files"
    [[ ${#left[@]} -eq 0 ]] || { printf '    left: %s\n' "${left[@]}"; return 1; }
}
check "apt-get remove left none of the package's files" left_behind
"${SUDO[@]}" env DEBIAN_FRONTEND=noninteractive apt-get purge -y "$pkg" >/dev/null 2>&1
no_trace() {
    local found
    found=$(find /usr /etc /var /opt -xdev \( -iname '*sensordataviewer*' -o \
        -iname '*sensor-data-viewer*' -o -name '*x-oryx-sensors-data*' \) 2>/dev/null)
    [[ -z "$found" ]] || { echo "$found" | sed 's/^/    found: /'; return 1; }
}
check "after purge no file named after the package, its ids or its MIME type" no_trace
check "the menu no longer offers it for recordings" \
    bash -c "! grep -q 'x-oryx-sensors-data' /usr/share/applications/mimeinfo.cache"
check "a recording is plain text/csv again" is_type "$recording" text/csv

echo
echo "check-package: $passed passed, $failed failed"
[[ $failed -eq 0 ]]
