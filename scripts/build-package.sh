#!/usr/bin/env bash
# Sets up the machine, builds the viewer with Debian's hardening flags (Release) and makes the
# Debian package with CPack, then checks it: lintian, desktop-file-validate, appstreamcli.
#
#   bash scripts/build-package.sh      ->  build/package/sensor-data-viewer_<version>-1_<arch>.deb
#
# Exits non-zero if the build fails, lintian reports an error or a validator fails.
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/common.sh"
cd "$REPO_ROOT"

bash scripts/install-deps.sh

# dpkg-dev and file for CPack's dpkg-shlibdeps, and the checkers run below.
PACKAGE_TOOLS=(dpkg-dev file lintian desktop-file-utils appstream)
native=$(dpkg --print-architecture)
missing=()
for pkg in "${PACKAGE_TOOLS[@]}"; do
    status=$(dpkg-query -W -f='${db:Status-Status} ${Architecture}\n' "$pkg" 2>/dev/null || true)
    if ! grep -qxE "installed ($native|all)" <<<"$status"; then
        missing+=("$pkg")
    fi
done
if [[ ${#missing[@]} -gt 0 ]]; then
    SUDO=()
    [[ $(id -u) -ne 0 ]] && SUDO=(sudo)
    echo "build-package: installing ${missing[*]}"
    "${SUDO[@]}" apt-get update
    "${SUDO[@]}" env DEBIAN_FRONTEND=noninteractive \
        apt-get install -y --no-install-recommends "${missing[@]}"
fi

BUILD_DIR=build/package

# The flags Debian builds its own packages with (fortify, stack protector, RELRO), plus
# immediate binding, without -g: the package ships stripped. Dates in the package follow the
# last commit.
export DEB_BUILD_MAINT_OPTIONS=hardening=+all
export DEB_CXXFLAGS_MAINT_STRIP=-g
CXXFLAGS="$(dpkg-buildflags --get CXXFLAGS) $(dpkg-buildflags --get CPPFLAGS)"
LDFLAGS="$(dpkg-buildflags --get LDFLAGS)"
export CXXFLAGS LDFLAGS
if SOURCE_DATE_EPOCH=$(git -C "$REPO_ROOT" log -1 --format=%ct 2>/dev/null); then
    export SOURCE_DATE_EPOCH
fi

configure "$BUILD_DIR" -DCMAKE_BUILD_TYPE=Release -DBUILD_TESTING=OFF -DORYX_BUILD_BENCH=OFF \
    -DORYX_SANITIZE= "-DCMAKE_CXX_FLAGS=$CXXFLAGS" "-DCMAKE_EXE_LINKER_FLAGS=$LDFLAGS"
cmake --build "$BUILD_DIR" -j "$JOBS"
rm -f "$BUILD_DIR"/*.deb
(cd "$BUILD_DIR" && cpack -G DEB)

deb=$(ls "$BUILD_DIR"/*.deb)
echo
echo "=== $deb"
dpkg-deb --info "$deb"
dpkg-deb --contents "$deb"

status=0
echo
echo "=== lintian"
# Errors fail the build; warnings and notes are printed for review.
lintian --fail-on error --display-info "$deb" || status=1

echo
echo "=== desktop-file-validate, appstreamcli validate"
contents=$(mktemp -d)
trap 'rm -rf "$contents"' EXIT
dpkg-deb -x "$deb" "$contents"
desktop-file-validate "$contents"/usr/share/applications/*.desktop || status=1
# --no-net: the screenshots are published with the project's site, not fetched here.
appstreamcli validate --no-net --explain "$contents"/usr/share/metainfo/*.metainfo.xml || status=1

if [[ $status -ne 0 ]]; then
    echo "build-package: $deb FAILED its checks" >&2
    exit 1
fi
echo
echo "build-package: $deb"
