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

# The packaged program carries the distribution's hardening (cmake/TarnwickHardening.cmake),
# and the check finds each feature missing in a program built without them.
if(TARNWICK_HARDENED)
    set(tarnwick_no_fortify OFF)
    if(TARNWICK_SANITIZE OR CMAKE_BUILD_TYPE STREQUAL "Debug")
        set(tarnwick_no_fortify ON)
    endif()
    add_test(NAME tarnwick_package_hardening
        COMMAND ${CMAKE_COMMAND} -DBUILD_DIR=${PROJECT_BINARY_DIR} -DVERSION=${PROJECT_VERSION}
                -DWORK_DIR=${PROJECT_BINARY_DIR}/hardening-test
                -DNO_FORTIFY=${tarnwick_no_fortify}
                -P ${PROJECT_SOURCE_DIR}/cmake/CheckHardening.cmake)
    set_tests_properties(tarnwick_package_hardening PROPERTIES LABELS package TIMEOUT 120
        RESOURCE_LOCK tarnwick_cpack FIXTURES_REQUIRED tarnwick_deb)

    add_executable(tarnwick_unhardened ${PROJECT_SOURCE_DIR}/tests/package/unhardened.cpp)
    set_target_properties(tarnwick_unhardened PROPERTIES POSITION_INDEPENDENT_CODE OFF AUTOMOC OFF)
    target_compile_options(tarnwick_unhardened PRIVATE -fno-stack-protector -U_FORTIFY_SOURCE
                           -O2)
    target_link_options(tarnwick_unhardened PRIVATE LINKER:-z,norelro LINKER:-z,lazy)
    add_test(NAME tarnwick_hardening_check_finds_missing
        COMMAND ${CMAKE_COMMAND} -DELF=$<TARGET_FILE:tarnwick_unhardened> -DEXPECT_MISSING=ON
                -P ${PROJECT_SOURCE_DIR}/cmake/CheckHardening.cmake)
    set_tests_properties(tarnwick_hardening_check_finds_missing PROPERTIES LABELS package
        TIMEOUT 60)
endif()
