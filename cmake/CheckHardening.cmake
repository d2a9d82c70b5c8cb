# Checks hardening with Debian's hardening-check (devscripts).
#   cmake -DBUILD_DIR=<build> -DVERSION=<x.y.z> -DWORK_DIR=<scratch> -P CheckHardening.cmake
# unpacks the Debian package that cpack made in BUILD_DIR and checks its usr/bin/tarnwick;
#   cmake -DELF=<file> -P CheckHardening.cmake
# checks that file instead. Each of these must be reported: position-independent executable,
# stack protector, fortified C library calls, read-only relocations, immediate binding.
# -DEXPECT=no turns the check around: every feature must be reported missing (a program built
# without the flags, which shows that the check notices each one).
# -DSKIP_FORTIFY=ON leaves out the fortified calls: a build without optimisation has none, and
# a program with no call whose buffer size the compiler knows has none to show either, built
# with -D_FORTIFY_SOURCE or not (the program itself: its copies are the C++ library's, and
# hardening-check then finds only memcpy, memmove and memset). The probe program built with the
# same flags shows them. Control-flow protection is not among Debian 12's build flags and is
# never required.
find_program(HARDENING_CHECK hardening-check)
if(NOT HARDENING_CHECK)
    message(FATAL_ERROR "hardening-check not found: install the Debian package devscripts")
endif()
if(NOT DEFINED EXPECT)
    set(EXPECT yes)
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

set(features "Position Independent Executable" "Stack protected" "Fortify Source functions"
    "Read-only relocations" "Immediate binding")
set(options --nocfprotection)
if(SKIP_FORTIFY)
    list(APPEND options --nofortify)
    list(REMOVE_ITEM features "Fortify Source functions")
endif()
execute_process(COMMAND ${HARDENING_CHECK} --verbose ${options} ${ELF}
    RESULT_VARIABLE result OUTPUT_VARIABLE out ERROR_VARIABLE out)

set(wrong "")
foreach(feature IN LISTS features)
    string(FIND "${out}" "\n ${feature}: ${EXPECT}" at)
    if(at EQUAL -1)
        list(APPEND wrong "${feature}")
    endif()
endforeach()

if(EXPECT STREQUAL "no")
    if(result EQUAL 0 OR wrong)
        message(FATAL_ERROR "hardening-check does not find these missing: ${wrong}\n${out}")
    endif()
elseif(NOT result EQUAL 0 OR wrong)
    message(FATAL_ERROR "Hardening missing (${wrong}):\n${out}")
endif()
message(STATUS "hardening-check ${options}:\n${out}")
