# Runs one fuzz target as a CTest test (see TarnwickFuzz.cmake): cmake -DFUZZER=… -DNAME=…
# -DCORPUS=… -DFINDINGS=… -DREGRESSIONS=… -DOPTIONS=a|b -DSEEDS=a|b -P RunFuzzer.cmake
# Any finding (crash, leak, undefined behaviour, time-out, memory) fails the test, and the input
# that caused it stays in FINDINGS; its path is printed with what to do with it.
string(REPLACE "|" ";" options "${OPTIONS}")
string(REPLACE "|" ";" seeds "${SEEDS}")
set(folders)
foreach(folder IN LISTS seeds)
    if(IS_DIRECTORY "${folder}")
        list(APPEND folders "${folder}")
    endif()
endforeach()
file(MAKE_DIRECTORY "${CORPUS}" "${FINDINGS}")
file(GLOB earlier "${FINDINGS}/*")

set(ENV{ASAN_OPTIONS} "detect_leaks=1:detect_stack_use_after_return=0:symbolize=1")
set(ENV{UBSAN_OPTIONS} "halt_on_error=1:print_stacktrace=1")
execute_process(COMMAND "${FUZZER}" ${options} "-artifact_prefix=${FINDINGS}/" "${CORPUS}"
                        ${folders}
                RESULT_VARIABLE result)
if(result EQUAL 0)
    return()
endif()

file(GLOB found "${FINDINGS}/*")
if(earlier)
    list(REMOVE_ITEM found ${earlier})
endif()
if(NOT found)
    message(FATAL_ERROR "The fuzz target ${NAME} ended with ${result} and kept no input.")
endif()
foreach(input IN LISTS found)
    message("Finding of ${NAME}: ${input}")
endforeach()
message(FATAL_ERROR
    "The fuzz target ${NAME} found inputs the code cannot take (above). Fix the cause, then "
    "copy each input to ${REGRESSIONS}/ under a name that says what it is: the tests replay "
    "every input kept there. Run one again with: ${FUZZER} <input>")
