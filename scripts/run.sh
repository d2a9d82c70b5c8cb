#!/usr/bin/env bash
# Builds Tarnwick and starts it. The program keeps its catalogue "twdata.dat" beside the
# executable; when there is none yet, a small sample catalogue is put there first.
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/deps.sh"

build_dir="$TARNWICK_ROOT/build"
tarnwick_configure "$build_dir" -DTARNWICK_BUILD_TESTS=OFF
cmake --build "$build_dir" --target tarnwick

app_dir="$build_dir/bin"
if [ ! -e "$app_dir/twdata.dat" ]; then
    cp "$TARNWICK_ROOT/data/sample/twdata.dat" "$app_dir/twdata.dat"
    echo "Put the sample catalogue into $app_dir"
fi
exec "$app_dir/tarnwick" "$@"
