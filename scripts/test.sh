#!/usr/bin/env bash
# Builds everything (warnings as errors), checks the formatting and runs every test. The
# tests need no display: they run on Qt's offscreen platform.
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/deps.sh"

build_dir="$TARNWICK_ROOT/build-tests"
tarnwick_configure "$build_dir" -DTARNWICK_BUILD_TESTS=ON -DTARNWICK_BUILD_BENCH=ON -DTARNWICK_WERROR=ON
cmake --build "$build_dir" --target format-check
cmake --build "$build_dir" -j "$(nproc)"
QT_QPA_PLATFORM=offscreen ctest --test-dir "$build_dir" -j "$(nproc)" --output-on-failure --timeout 300
