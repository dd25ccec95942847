#!/usr/bin/env bash
# Installs the Debian 12 packages needed to build, test and run the viewer.
# Idempotent: apt is only touched when a package is missing.
set -euo pipefail

PACKAGES=(
    build-essential cmake ninja-build pkg-config
    qtbase5-dev libqt5opengl5-dev libqt5svg5-dev qttools5-dev-tools
    libqwt-qt5-dev libeigen3-dev libhidapi-dev
    libgtest-dev libbenchmark-dev
    xvfb xauth libgl1-mesa-dri mesa-utils fonts-roboto-unhinted
)

# One line per installed architecture of a package (several once another architecture, e.g.
# arm64 for tools/build-arm64.sh, is added): the machine's own or "all" must be installed.
native=$(dpkg --print-architecture)
missing=()
for pkg in "${PACKAGES[@]}"; do
    status=$(dpkg-query -W -f='${db:Status-Status} ${Architecture}\n' "$pkg" 2>/dev/null || true)
    if ! grep -qxE "installed ($native|all)" <<<"$status"; then
        missing+=("$pkg")
    fi
done

if [[ ${#missing[@]} -eq 0 ]]; then
    echo "install-deps: all ${#PACKAGES[@]} packages present"
    exit 0
fi

SUDO=()
if [[ $(id -u) -ne 0 ]]; then
    SUDO=(sudo)
fi

echo "install-deps: installing ${missing[*]}"
"${SUDO[@]}" apt-get update
"${SUDO[@]}" env DEBIAN_FRONTEND=noninteractive \
    apt-get install -y --no-install-recommends "${missing[@]}"
