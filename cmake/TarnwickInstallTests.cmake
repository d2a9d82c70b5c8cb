# Tests of the install tree and of the Debian package. Both work on the build folder, so they
# need the program built first (as every test does).
string(REPLACE ";" "," tarnwick_icon_size_text "${TARNWICK_ICON_SIZES}")
add_test(NAME tarnwick_install_tree
    COMMAND ${CMAKE_COMMAND} -DBUILD_DIR=${PROJECT_BINARY_DIR}
            -DWORK_DIR=${PROJECT_BINARY_DIR}/install-test
            -DICON_SIZES=${tarnwick_icon_size_text}
            -P ${PROJECT_SOURCE_DIR}/cmake/CheckInstall.cmake)
set_tests_properties(tarnwick_install_tree PROPERTIES LABELS install TIMEOUT 120)

add_test(NAME tarnwick_debian_package
    COMMAND ${CMAKE_COMMAND} -DBUILD_DIR=${PROJECT_BINARY_DIR}
            -DVERSION=${PROJECT_VERSION} -DCPACK=${CMAKE_CPACK_COMMAND}
            -P ${PROJECT_SOURCE_DIR}/cmake/CheckPackage.cmake)
set_tests_properties(tarnwick_debian_package PROPERTIES LABELS package TIMEOUT 300
    RESOURCE_LOCK tarnwick_cpack FIXTURES_SETUP tarnwick_deb)

# The packaged program carries the distribution's hardening (cmake/TarnwickHardening.cmake). A
# probe built with the same flags shows the fortified calls, which the program has none of to
# show (see cmake/CheckHardening.cmake), and built without the flags it shows that the check
# notices each feature missing.
if(TARNWICK_HARDENED)
    add_test(NAME tarnwick_package_hardening
        COMMAND ${CMAKE_COMMAND} -DBUILD_DIR=${PROJECT_BINARY_DIR} -DVERSION=${PROJECT_VERSION}
                -DWORK_DIR=${PROJECT_BINARY_DIR}/hardening-test -DSKIP_FORTIFY=ON
                -P ${PROJECT_SOURCE_DIR}/cmake/CheckHardening.cmake)
    set_tests_properties(tarnwick_package_hardening PROPERTIES LABELS package TIMEOUT 120
        RESOURCE_LOCK tarnwick_cpack FIXTURES_REQUIRED tarnwick_deb)

    set(tarnwick_probe_source ${PROJECT_SOURCE_DIR}/tests/package/hardeningprobe.cpp)
    add_executable(tarnwick_hardening_probe ${tarnwick_probe_source})
    set_target_properties(tarnwick_hardening_probe PROPERTIES AUTOMOC OFF)
    target_compile_options(tarnwick_hardening_probe PRIVATE -O2)
    set(tarnwick_probe_no_fortify OFF)
    if(TARNWICK_SANITIZE OR CMAKE_BUILD_TYPE STREQUAL "Debug")
        set(tarnwick_probe_no_fortify ON)
    endif()
    add_test(NAME tarnwick_hardening_flags
        COMMAND ${CMAKE_COMMAND} -DELF=$<TARGET_FILE:tarnwick_hardening_probe>
                -DSKIP_FORTIFY=${tarnwick_probe_no_fortify}
                -P ${PROJECT_SOURCE_DIR}/cmake/CheckHardening.cmake)
    set_tests_properties(tarnwick_hardening_flags PROPERTIES LABELS package TIMEOUT 60)

    add_executable(tarnwick_unhardened_probe ${tarnwick_probe_source})
    set_target_properties(tarnwick_unhardened_probe PROPERTIES POSITION_INDEPENDENT_CODE OFF
                          AUTOMOC OFF)
    target_compile_options(tarnwick_unhardened_probe PRIVATE -fno-stack-protector
                           -U_FORTIFY_SOURCE -O2)
    target_link_options(tarnwick_unhardened_probe PRIVATE LINKER:-z,norelro LINKER:-z,lazy)
    add_test(NAME tarnwick_hardening_check_finds_missing
        COMMAND ${CMAKE_COMMAND} -DELF=$<TARGET_FILE:tarnwick_unhardened_probe> -DEXPECT=no
                -P ${PROJECT_SOURCE_DIR}/cmake/CheckHardening.cmake)
    set_tests_properties(tarnwick_hardening_check_finds_missing PROPERTIES LABELS package
        TIMEOUT 60)
endif()
