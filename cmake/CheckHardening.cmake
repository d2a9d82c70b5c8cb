# Checks the hardening of the packaged program with Debian's hardening-check (devscripts).
#   cmake -DBUILD_DIR=<build> -DVERSION=<x.y.z> -DWORK_DIR=<scratch> [-DNO_FORTIFY=ON]
#         -P CheckHardening.cmake
# unpacks the Debian package that cpack made in BUILD_DIR and requires every feature of the
# distribution's build flags in its usr/bin/tarnwick: position-independent executable, stack
# protector, fortified C library calls, read-only relocations and immediate binding.
# Control-flow protection is not among Debian 12's build flags and is not required.
#   cmake -DELF=<file> -DEXPECT_MISSING=ON -P CheckHardening.cmake
# checks the check: it passes only when hardening-check finds each of those features missing
# in ELF (a program built without them).
find_program(HARDENING_CHECK hardening-check)
if(NOT HARDENING_CHECK)
    message(FATAL_ERROR "hardening-check not found: install the Debian package devscripts")
endif()

if(NOT ELF)
    execute_process(COMMAND dpkg --print-architecture OUTPUT_VARIABLE arch
        OUTPUT_STRIP_TRAILING_WHITESPACE)
    set(deb ${BUILD_DIR}/tarnwick_${VERSION}_${arch}.deb)
    if(NOT EXISTS ${deb})
        message(FATAL_ERROR "No package ${deb}: the package test makes it")
    endif()
    file(REMOVE_RECURSE ${WORK_DIR})
    execute_process(COMMAND dpkg-deb -x ${deb} ${WORK_DIR} RESULT_VARIABLE result)
    set(ELF ${WORK_DIR}/usr/bin/tarnwick)
    if(NOT result EQUAL 0 OR NOT EXISTS ${ELF})
        message(FATAL_ERROR "Could not unpack usr/bin/tarnwick from ${deb}")
    endif()
endif()

set(features
    "Position Independent Executable"
    "Stack protected"
    "Fortify Source functions"
    "Read-only relocations"
    "Immediate binding")
set(options --nocfprotection)
if(NO_FORTIFY)
    # A Debug or sanitizer build has no fortified calls (see TarnwickHardening.cmake).
    list(APPEND options --nofortify)
    list(REMOVE_ITEM features "Fortify Source functions")
endif()
execute_process(COMMAND ${HARDENING_CHECK} ${options} ${ELF}
    RESULT_VARIABLE result OUTPUT_VARIABLE out ERROR_VARIABLE out)

set(wrong "")
foreach(feature IN LISTS features)
    if(EXPECT_MISSING)
        set(pattern "\n ${feature}: no")
    else()
        set(pattern "\n ${feature}: yes")
    endif()
    string(FIND "${out}" "${pattern}" at)
    if(at EQUAL -1)
        list(APPEND wrong "${feature}")
    endif()
endforeach()

if(EXPECT_MISSING)
    if(result EQUAL 0 OR wrong)
        message(FATAL_ERROR "hardening-check did not find these missing: ${wrong}\n${out}")
    endif()
    message(STATUS "hardening-check finds every feature missing in ${ELF}")
    return()
endif()
if(NOT result EQUAL 0 OR wrong)
    message(FATAL_ERROR "Hardening missing in the package (${wrong}):\n${out}")
endif()
message(STATUS "hardening-check ${options}:\n${out}")
