# One helper adds every test executable: it links the shared test support (Qt-aware main,
# fakes, temporary folders), passes the test data folder through a define and registers each
# GoogleTest case with CTest. Every case gets a time limit, so a modal window left open by
# mistake fails the run instead of blocking it.
function(tarnwick_add_test name)
    add_executable(${name} ${ARGN})
    target_link_libraries(${name} PRIVATE tarnwick_test_support GTest::gmock Qt6::Test
                          tarnwick_warnings)
    target_compile_definitions(${name} PRIVATE
        TARNWICK_TEST_DATA="${CMAKE_CURRENT_SOURCE_DIR}/data")
    gtest_discover_tests(${name} DISCOVERY_MODE PRE_TEST DISCOVERY_TIMEOUT 60
        PROPERTIES ENVIRONMENT QT_QPA_PLATFORM=offscreen TIMEOUT 120)
endfunction()
