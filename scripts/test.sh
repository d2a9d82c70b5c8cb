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

# The same build and tests again under AddressSanitizer and UndefinedBehaviorSanitizer; any
# report ends the test with an error. Leaks inside Qt's and the system's own libraries are
# listed in scripts/lsan.supp; the project's own code is never suppressed there. The Debian
# package is built and checked once, from the first build: a package of a sanitizer build would
# never be shipped.
asan_dir="$TARNWICK_ROOT/build-asan"
tarnwick_configure "$asan_dir" -DCMAKE_BUILD_TYPE=Debug -DCMAKE_CXX_FLAGS_DEBUG="-g -O1" \
    -DTARNWICK_BUILD_TESTS=ON -DTARNWICK_WERROR=ON -DTARNWICK_SANITIZE=ON
cmake --build "$asan_dir" -j "$(nproc)"
ASAN_OPTIONS="halt_on_error=1:abort_on_error=1:detect_leaks=1:detect_stack_use_after_return=0" \
    UBSAN_OPTIONS="halt_on_error=1:print_stacktrace=1" \
    LSAN_OPTIONS="suppressions=$TARNWICK_ROOT/scripts/lsan.supp:print_suppressions=0" \
    QT_QPA_PLATFORM=offscreen ctest --test-dir "$asan_dir" -j "$(nproc)" --output-on-failure \
    --timeout 600 --label-exclude package
