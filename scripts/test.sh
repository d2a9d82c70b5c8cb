#!/usr/bin/env bash
# Builds everything (warnings as errors), checks the formatting and runs every test. The
# tests need no display: they run on Qt's offscreen platform.
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/deps.sh"

build_dir="$TARNWICK_ROOT/build-tests"
# Line tables (-g1) are all a failing test's backtrace needs, and cost far less to build than
# full debugging information. The tests' own code is not optimised; the program's code is, and
# its libraries are unity builds (src/CMakeLists.txt).
tarnwick_configure "$build_dir" -DCMAKE_CXX_FLAGS_RELWITHDEBINFO="-O2 -g1 -DNDEBUG" \
    -DTARNWICK_TEST_CODE_OPTIONS=-O0 -DTARNWICK_UNITY_BUILD=ON \
    -DTARNWICK_BUILD_TESTS=ON -DTARNWICK_BUILD_BENCH=ON -DTARNWICK_WERROR=ON
cmake --build "$build_dir" --target format-check
cmake --build "$build_dir" -j "$(nproc)"
QT_QPA_PLATFORM=offscreen ctest --test-dir "$build_dir" -j "$(nproc)" --output-on-failure --timeout 300

# The same build and tests again under AddressSanitizer and UndefinedBehaviorSanitizer; any
# report ends the test with an error. Leaks inside Qt's and the system's own libraries are
# listed in scripts/lsan.supp; the project's own code is never suppressed there. The Debian
# package is built and checked once, from the first build: a package of a sanitizer build would
# never be shipped. Each test executable runs its cases in one process here (see
# cmake/TarnwickTest.cmake): an instrumented process costs more to start and to check at exit
# than most cases take.
asan_dir="$TARNWICK_ROOT/build-asan"
tarnwick_configure "$asan_dir" -DCMAKE_BUILD_TYPE=Debug -DCMAKE_CXX_FLAGS_DEBUG="-g1 -O1" \
    -DTARNWICK_TEST_CODE_OPTIONS=-O0 -DTARNWICK_UNITY_BUILD=ON \
    -DTARNWICK_BUILD_TESTS=ON -DTARNWICK_WERROR=ON -DTARNWICK_SANITIZE=ON \
    -DTARNWICK_TEST_WHOLE_EXECUTABLES=ON
cmake --build "$asan_dir" -j "$(nproc)"
ASAN_OPTIONS="halt_on_error=1:abort_on_error=1:detect_leaks=1:detect_stack_use_after_return=0" \
    UBSAN_OPTIONS="halt_on_error=1:print_stacktrace=1" \
    LSAN_OPTIONS="suppressions=$TARNWICK_ROOT/scripts/lsan.supp:print_suppressions=0" \
    QT_QPA_PLATFORM=offscreen ctest --test-dir "$asan_dir" -j "$(nproc)" --output-on-failure \
    --timeout 600 --label-exclude package

# The fuzz targets (fuzz/): a third build with clang, of only the libraries they reach,
# instrumented for libFuzzer and checked by both sanitizers; each target then runs for
# TARNWICK_FUZZ_SECONDS (30 by default), two at a time. Any finding fails the run; the input
# stays in build-fuzz/fuzz/findings/<target>/ and its path is printed, to be kept in
# fuzz/regressions/<target>/, which the tests of both builds above replay. What the fuzzers learn
# stays in build-fuzz/fuzz/corpus/.
fuzz_dir="$TARNWICK_ROOT/build-fuzz"
CC=clang CXX=clang++ tarnwick_configure "$fuzz_dir" -DCMAKE_BUILD_TYPE=Debug \
    -DCMAKE_CXX_FLAGS_DEBUG="-g1 -O1" -DTARNWICK_UNITY_BUILD=ON -DTARNWICK_BUILD_TESTS=OFF \
    -DTARNWICK_BUILD_FUZZERS=ON -DTARNWICK_FUZZ_SECONDS="${TARNWICK_FUZZ_SECONDS:-30}"
cmake --build "$fuzz_dir" -j "$(nproc)" --target tarnwick_fuzzers
ctest --test-dir "$fuzz_dir" -j "$(nproc)" --output-on-failure -L fuzz
