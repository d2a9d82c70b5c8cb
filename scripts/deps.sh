#!/usr/bin/env bash
# Installs the Debian packages Tarnwick needs to build and test, when any is missing.
# Sourced by run.sh and test.sh; needs root (or sudo) only when something must be installed.
set -euo pipefail

tarnwick_packages=(
    g++ cmake ninja-build pkg-config
    qt6-base-dev qt6-base-dev-tools libgl-dev
    libgsf-1-dev libzip-dev libsodium-dev
    # the clipboard asks the X11 display whether a clipboard keeper runs
    libxcb1-dev
    # the quote book: Qt's SQLite driver, and SQLite itself for the online backup
    libqt6sql6-sqlite libsqlite3-dev
    libgtest-dev libgmock-dev libbenchmark-dev
    clang-format clang-tidy fonts-dejavu-core lld
    # the fuzz targets: clang with libFuzzer and the sanitizers' run-time, llvm-symbolizer
    clang libclang-rt-14-dev llvm-14
    # every source compiled as for Windows too (scripts/windows_check.py)
    g++-mingw-w64-x86-64-posix
    # icon drawing, install-tree validation and the Debian package
    librsvg2-bin desktop-file-utils appstream dpkg-dev file lintian
    # hardening-check, which checks the packaged program's hardening
    devscripts
    # end-to-end checks of the real executable under Xvfb
    xvfb xdotool xclip imagemagick openbox dbus-daemon at-spi2-core
    python3 python3-gi gir1.2-atspi-2.0 python3-xlib
    # print support and the readers of the documents the tests make
    libqt6printsupport6 unrtf poppler-utils
)

tarnwick_install_missing() {
    local missing=()
    local pkg
    for pkg in "${tarnwick_packages[@]}"; do
        if ! dpkg-query -W -f='${Status}' "$pkg" 2>/dev/null | grep -q 'install ok installed'; then
            missing+=("$pkg")
        fi
    done
    [ ${#missing[@]} -eq 0 ] && return 0
    echo "Installing missing packages: ${missing[*]}"
    local sudo=""
    [ "$(id -u)" -ne 0 ] && sudo="sudo"
    $sudo apt-get update -qq
    DEBIAN_FRONTEND=noninteractive $sudo apt-get install -y -qq --no-install-recommends "${missing[@]}"
}

tarnwick_configure() {
    local build_dir=$1
    shift
    cmake -S "$TARNWICK_ROOT" -B "$build_dir" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo "$@"
}

TARNWICK_ROOT=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
export TARNWICK_ROOT
tarnwick_install_missing
