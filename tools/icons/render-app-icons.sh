#!/usr/bin/env bash
# Renders the application icon for desktop menus (the hicolor icon theme) from the same SVG
# as the window icon, tools/icons/svg/favicon.svg, at the sizes desktops ask for:
#
#   bash tools/icons/render-app-icons.sh
#
# writes packaging/icons/<N>x<N>.png. packaging/CMakeLists.txt installs them, and the SVG
# itself as the scalable icon. Run it again after make_icons.py changed favicon.svg.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/../.."

SIZES=(16 22 24 32 48 64 128 256)
source_svg=tools/icons/svg/favicon.svg
out=packaging/icons

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
# Qt asks for a runtime folder even on the offscreen platform.
export XDG_RUNTIME_DIR="$work/runtime"
mkdir -m 700 "$XDG_RUNTIME_DIR"

cmake -S tools/icons -B "$work/build" >/dev/null
cmake --build "$work/build" -j2 >/dev/null

# render_icons draws each SVG at the size it declares, so each size gets a copy declaring it.
grep -q 'width="256" height="256"' "$source_svg" ||
    { echo "render-app-icons: $source_svg no longer declares 256x256" >&2; exit 1; }
for size in "${SIZES[@]}"; do
    mkdir -p "$work/$size/svg" "$work/$size/png"
    sed "s/width=\"256\" height=\"256\"/width=\"$size\" height=\"$size\"/" "$source_svg" \
        > "$work/$size/svg/icon.svg"
    "$work/build/render_icons" "$work/$size/svg" "$work/$size/png" "$work/$size/png" >/dev/null
    cp "$work/$size/png/icon.png" "$out/${size}x${size}.png"
    echo "wrote $out/${size}x${size}.png"
done
