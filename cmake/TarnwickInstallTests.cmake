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
    RESOURCE_LOCK tarnwick_cpack)
