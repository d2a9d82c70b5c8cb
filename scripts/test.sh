#!/usr/bin/env bash
# Builds everything (warnings as errors), checks the formatting and runs every test. The
# tests need no display: they run on Qt's offscreen platform.
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/deps.sh"

# Each stage's time (wall clock, and the processor time of everything it ran, which does not
# depend on what else the machine is doing) is printed as it ends and again, all together, at
# the end.
tarnwick_times=()
tarnwick_cpu_file=$(mktemp)
cpu_seconds() { # sets $cpu; the builtin times, in this shell: its children's user and system time
    times >"$tarnwick_cpu_file"
    cpu=$(awk 'NR == 2 { s = 0; for (i = 1; i <= 2; ++i) { split($i, t, /[ms]/); s += t[1] * 60 + t[2] }
                         printf "%d", s }' "$tarnwick_cpu_file")
}
stage() {
    local name=$1 started=$SECONDS cpu before
    cpu_seconds
    before=$cpu
    shift
    "$@"
    cpu_seconds
    tarnwick_times+=("$(printf '%5d s %6d s cpu  %s' $((SECONDS - started)) $((cpu - before)) "$name")")
    echo "== ${tarnwick_times[-1]}"
}
# Runs a second stage beside the one in hand, for the stages that leave a core idle (the tests
# mostly wait for windows, processes and timers): the command goes to the background at a lower
# priority with its output kept aside; side_done waits for it, prints that output and its time
# and fails as the command did. Its processor time is counted in the stage it ran beside.
side_name="" side_pid="" side_log="" side_started=0
side_start() {
    side_name=$1
    shift
    side_log=$(mktemp)
    side_started=$SECONDS
    (renice -n 10 -p "$BASHPID" >/dev/null && "$@") >"$side_log" 2>&1 &
    side_pid=$!
}
side_done() {
    local status=0
    wait "$side_pid" || status=$?
    side_pid=""
    echo "---- $side_name:"
    cat "$side_log"
    rm -f "$side_log"
    tarnwick_times+=("$(printf '%5d s %10s  %s (beside the stage before)' $((SECONDS - side_started)) "" "$side_name")")
    echo "== ${tarnwick_times[-1]}"
    return "$status"
}
# When a stage fails while a side stage runs, the side stage is stopped with everything it
# started, and what it printed so far is shown.
stop_tree() {
    local child
    for child in $(pgrep -P "$1" || true); do stop_tree "$child"; done
    kill "$1" 2>/dev/null || true
}
stop_side() {
    [ -n "$side_pid" ] || return 0
    stop_tree "$side_pid"
    wait "$side_pid" 2>/dev/null || true
    echo "---- $side_name (stopped: the stage beside it failed):"
    cat "$side_log"
    rm -f "$side_log"
    side_pid=""
}
trap 'stop_side; cpu_seconds; printf "%s\n" "${tarnwick_times[@]}" "$(printf "%5d s %6d s cpu  total" \
    $SECONDS "$cpu")"; rm -f "$tarnwick_cpu_file"' EXIT

# The test executables precompile the headers they share; ccache, where it is the compiler
# launcher, caches such builds only with these sloppiness settings.
export CCACHE_SLOPPINESS="${CCACHE_SLOPPINESS:-pch_defines,time_macros}"

build_dir="$TARNWICK_ROOT/build-tests"
# Line tables (-g1) are all a failing test's backtrace needs, and cost far less to build than
# full debugging information. The tests' own code is not optimised; the program's code is, and
# its libraries are unity builds (src/CMakeLists.txt).
stage "configure" tarnwick_configure "$build_dir" -DCMAKE_CXX_FLAGS_RELWITHDEBINFO="-O2 -g1 -DNDEBUG" \
    -DTARNWICK_TEST_CODE_OPTIONS=-O0 -DTARNWICK_UNITY_BUILD=ON \
    -DTARNWICK_BUILD_TESTS=ON -DTARNWICK_BUILD_BENCH=ON -DTARNWICK_WERROR=ON
# clang-tidy (the checks in .clang-tidy) over the program's sources, from this build's compile
# commands, beside the build and the tests; any finding fails the run. It needs nothing the
# build makes (no source includes a generated file), and at its lower priority it takes the
# processor time the build leaves (linking, the last files of a target) and then shares the
# tests' stage, which mostly waits.
# After it, every source of src/ is compiled once more by itself (scripts/standalone.py): the
# run command and a plain build compile them one by one, and a unity build hides a missing
# include. Then once more as a Windows compiler sees it (scripts/windows_check.py, MinGW-w64):
# no Linux build compiles the Windows branches.
side_checks() {
    local status=0
    python3 "$TARNWICK_ROOT/scripts/tidy.py" "$build_dir" --jobs "$(nproc)" || status=1
    python3 "$TARNWICK_ROOT/scripts/standalone.py" "$build_dir" --jobs "$(nproc)" || status=1
    python3 "$TARNWICK_ROOT/scripts/windows_check.py" "$build_dir" --jobs "$(nproc)" || status=1
    return "$status"
}
side_start "clang-tidy, standalone sources, Windows compile" side_checks
stage "format check" cmake --build "$build_dir" --target format-check
stage "build" cmake --build "$build_dir" -j "$(nproc)"
stage "tests" env QT_QPA_PLATFORM=offscreen ctest --test-dir "$build_dir" -j "$(nproc)" --output-on-failure --timeout 300
side_done

# The same build and tests again under AddressSanitizer and UndefinedBehaviorSanitizer; any
# report ends the test with an error. Leaks inside Qt's and the system's own libraries are
# listed in scripts/lsan.supp; the project's own code is never suppressed there. The Debian
# package is built and checked once, from the first build: a package of a sanitizer build would
# never be shipped. Each test executable runs its cases in one process here (see
# cmake/TarnwickTest.cmake): an instrumented process costs more to start and to check at exit
# than most cases take. The tests' own code is built without UBSan's dynamic type check (vptr),
# which alone took a third of the time of building it; the program's code keeps every check.
asan_dir="$TARNWICK_ROOT/build-asan"
stage "sanitizer configure" tarnwick_configure "$asan_dir" -DCMAKE_BUILD_TYPE=Debug -DCMAKE_CXX_FLAGS_DEBUG="-g1 -O1" \
    -DTARNWICK_TEST_CODE_OPTIONS="-O0;-fno-sanitize=vptr" -DTARNWICK_UNITY_BUILD=ON \
    -DTARNWICK_BUILD_TESTS=ON -DTARNWICK_WERROR=ON -DTARNWICK_SANITIZE=ON \
    -DTARNWICK_TEST_WHOLE_EXECUTABLES=ON
stage "sanitizer build" cmake --build "$asan_dir" -j "$(nproc)"
# The fuzz targets (fuzz/), beside the sanitizer tests: a third build with clang, of only the
# libraries they reach, instrumented for libFuzzer and checked by both sanitizers; each target
# then runs for TARNWICK_FUZZ_SECONDS (15 by default), two at a time. Any finding fails the run;
# the input stays in build-fuzz/fuzz/findings/<target>/ and its path is printed, to be kept in
# fuzz/regressions/<target>/, which the tests of both builds above replay. What the fuzzers learn
# stays in build-fuzz/fuzz/corpus/.
fuzz_dir="$TARNWICK_ROOT/build-fuzz"
fuzz_configure() { CC=clang CXX=clang++ tarnwick_configure "$@"; }
fuzz_all() {
    fuzz_configure "$fuzz_dir" -DCMAKE_BUILD_TYPE=Debug \
        -DCMAKE_CXX_FLAGS_DEBUG="-g1 -O1" -DTARNWICK_UNITY_BUILD=ON -DTARNWICK_BUILD_TESTS=OFF \
        -DTARNWICK_BUILD_FUZZERS=ON -DTARNWICK_FUZZ_SECONDS="${TARNWICK_FUZZ_SECONDS:-15}"
    cmake --build "$fuzz_dir" -j "$(nproc)" --target tarnwick_fuzzers
    ctest --test-dir "$fuzz_dir" -j "$(nproc)" --output-on-failure -L fuzz
}
side_start "fuzzing" fuzz_all
stage "sanitizer tests" env ASAN_OPTIONS="halt_on_error=1:abort_on_error=1:detect_leaks=1:detect_stack_use_after_return=0" \
    UBSAN_OPTIONS="halt_on_error=1:print_stacktrace=1" \
    LSAN_OPTIONS="suppressions=$TARNWICK_ROOT/scripts/lsan.supp:print_suppressions=0" \
    QT_QPA_PLATFORM=offscreen ctest --test-dir "$asan_dir" -j "$(nproc)" --output-on-failure \
    --timeout 600 --label-exclude package
side_done
