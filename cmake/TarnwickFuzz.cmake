# libFuzzer targets (fuzz/). With TARNWICK_BUILD_FUZZERS (clang only) every library is built
# with coverage instrumentation and the sanitizers, and each call of tarnwick_add_fuzzer adds a
# fuzz target and a CTest test (label "fuzz") that runs it for TARNWICK_FUZZ_SECONDS. Without
# the option the calls do nothing, so they stand in fuzz/CMakeLists.txt unconditionally.
#
#   tarnwick_add_fuzzer(<name> <source> [MAX_LEN <bytes>] [DICT <file>] [SEEDS <folder>...]
#                       [FULL_STACKS])
#
# FULL_STACKS: the target reaches a library built without frame pointers whose known leaks
# (scripts/lsan.supp) are recognised only by an allocation's whole stack, which costs speed.
#
# <source> defines LLVMFuzzerTestOneInput, usually by calling tarnwick::fuzzing::fuzzOne with
# <name> (see fuzz/fuzzentries.h, where the target's entry is listed so that the inputs kept in
# fuzz/regressions/<name>/ are replayed by the tests). The fuzzer starts from the SEEDS folders
# and from fuzz/regressions/<name>/; what it learns goes into <build>/fuzz/corpus/<name>/ and a
# finding into <build>/fuzz/findings/<name>/, never into the source tree.
set(TARNWICK_FUZZ_SECONDS 20 CACHE STRING "How long the test of each fuzz target runs, in seconds")
set(TARNWICK_FUZZ_RSS_LIMIT_MB 2048 CACHE STRING "The memory a fuzz target may use")

if(TARNWICK_BUILD_FUZZERS)
    if(NOT CMAKE_CXX_COMPILER_ID MATCHES "Clang")
        message(FATAL_ERROR "TARNWICK_BUILD_FUZZERS needs clang (CXX=clang++): libFuzzer is "
                            "part of clang")
    endif()
    add_compile_options(-fsanitize=fuzzer-no-link)
    add_custom_target(tarnwick_fuzzers)
endif()

function(tarnwick_add_fuzzer name source)
    if(NOT TARNWICK_BUILD_FUZZERS)
        return()
    endif()
    cmake_parse_arguments(PARSE_ARGV 2 FUZZ "FULL_STACKS" "MAX_LEN;DICT" "SEEDS")
    if(NOT FUZZ_MAX_LEN)
        set(FUZZ_MAX_LEN 16384)
    endif()
    set(target tarnwick_fuzz_${name})
    add_executable(${target} ${source})
    target_link_libraries(${target} PRIVATE tarnwick_fuzz_entries tarnwick_warnings)
    target_link_options(${target} PRIVATE -fsanitize=fuzzer)
    set_target_properties(${target} PROPERTIES AUTOMOC OFF)
    add_dependencies(tarnwick_fuzzers ${target})

    set(options -max_total_time=${TARNWICK_FUZZ_SECONDS} -max_len=${FUZZ_MAX_LEN}
        -rss_limit_mb=${TARNWICK_FUZZ_RSS_LIMIT_MB} -malloc_limit_mb=1024 -timeout=10
        -print_final_stats=1)
    if(FUZZ_DICT)
        list(APPEND options -dict=${FUZZ_DICT})
    endif()
    set(seeds ${PROJECT_SOURCE_DIR}/fuzz/regressions/${name} ${FUZZ_SEEDS})
    # Lists travel to the script joined by "|": CTest would split them at ";".
    string(JOIN "|" options ${options})
    string(JOIN "|" seeds ${seeds})
    add_test(NAME fuzz.${name}
             COMMAND ${CMAKE_COMMAND} -DFUZZER=$<TARGET_FILE:${target}> -DNAME=${name}
                     -DCORPUS=${CMAKE_BINARY_DIR}/fuzz/corpus/${name}
                     -DFINDINGS=${CMAKE_BINARY_DIR}/fuzz/findings/${name}
                     -DREGRESSIONS=${PROJECT_SOURCE_DIR}/fuzz/regressions/${name}
                     "-DOPTIONS=${options}" "-DSEEDS=${seeds}"
                     -DFULL_STACKS=${FUZZ_FULL_STACKS}
                     -P ${PROJECT_SOURCE_DIR}/cmake/RunFuzzer.cmake)
    math(EXPR timeout "${TARNWICK_FUZZ_SECONDS} + 120")
    set_tests_properties(fuzz.${name} PROPERTIES LABELS fuzz TIMEOUT ${timeout})
endfunction()
