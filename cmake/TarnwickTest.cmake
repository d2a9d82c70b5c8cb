# One helper adds every test executable: it links the shared test support (Qt-aware main,
# fakes, temporary folders), passes the test data folder through a define and registers the
# executable's GoogleTest cases with CTest.
#
# By default every case is a CTest test of its own, run in a process of its own, with a time
# limit, so a modal window left open by mistake fails that case instead of blocking the run.
# With TARNWICK_TEST_WHOLE_EXECUTABLES each executable is one CTest test that runs all its
# cases in one process: the same cases, without starting a process per case. The sanitizer
# pass uses it, where starting an instrumented Qt process and checking it for leaks at exit
# costs more than most cases themselves.
option(TARNWICK_TEST_WHOLE_EXECUTABLES "Run each test executable as one CTest test" OFF)
# Compiler options for the tests' own code only, after the build type's (the test command
# builds it with -O0: the code under test keeps the build type's optimisation, and the tests,
# two thirds of all sources, build in about half the time).
set(TARNWICK_TEST_CODE_OPTIONS "" CACHE STRING "Extra compiler options for the test code")

# The headers most test sources include (GoogleTest, Qt's core classes and the widgets the window
# tests look at), precompiled once for all test executables: parsing them again for every test
# source was most of the time of building the tests, and one header per executable still cost
# thirteen copies of the same work. A precompiled header holds only under the macros it was made
# with; the executables differ only in their own folders (which no shared header reads) and in
# Qt Test's TESTCASE folder macros, which the tests never use and which are therefore removed.
# CMake adds -Winvalid-pch, so with warnings as errors a header that cannot be used fails the
# build rather than making it silently slow.
option(TARNWICK_TEST_PCH "Precompile the headers the tests share" ON)
set(TARNWICK_TEST_PCH_HEADERS
    <algorithm> <functional> <memory> <optional> <string> <vector>
    <gtest/gtest.h>
    <QByteArray> <QDir> <QFile> <QFileInfo> <QObject> <QString> <QStringList> <QTemporaryDir>
    <QTimer> <QVariant> <QAbstractItemModel> <QTest> <QSignalSpy>
    <QApplication> <QAction> <QCheckBox> <QComboBox> <QHeaderView> <QLabel> <QLineEdit> <QMenu>
    <QMenuBar> <QPlainTextEdit> <QPushButton> <QTabWidget> <QTableView> <QToolBar> <QWidget>)
set(TARNWICK_TEST_COMMON_OPTIONS ${TARNWICK_TEST_CODE_OPTIONS}
    -UQT_TESTCASE_BUILDDIR -UQT_TESTCASE_SOURCEDIR)

# The target that owns the shared precompiled header (tests/CMakeLists.txt adds it once the
# test support library exists).
function(tarnwick_add_test_pch)
    if(TARNWICK_TEST_PCH)
        add_library(tarnwick_test_pch OBJECT ${PROJECT_SOURCE_DIR}/tests/support/pchowner.cpp)
        target_precompile_headers(tarnwick_test_pch PRIVATE ${TARNWICK_TEST_PCH_HEADERS})
        target_link_libraries(tarnwick_test_pch PRIVATE tarnwick_test_support GTest::gmock
                              Qt6::Test tarnwick_warnings)
        target_compile_options(tarnwick_test_pch PRIVATE ${TARNWICK_TEST_COMMON_OPTIONS})
        set_target_properties(tarnwick_test_pch PROPERTIES AUTOMOC OFF)
    endif()
endfunction()

function(tarnwick_add_test name)
    add_executable(${name} ${ARGN})
    if(TARNWICK_TEST_PCH)
        target_precompile_headers(${name} REUSE_FROM tarnwick_test_pch)
    endif()
    target_link_libraries(${name} PRIVATE tarnwick_test_support GTest::gmock Qt6::Test
                          tarnwick_warnings)
    target_compile_options(${name} PRIVATE ${TARNWICK_TEST_COMMON_OPTIONS})
    # The tests declare no Qt classes of their own, so moc has nothing to do. With
    # TARNWICK_UNITY_BUILD an executable's sources are compiled a few at a time, as the program's
    # libraries are (each source's helpers have names of their own); GCC then sees each test
    # fixture of an anonymous namespace as used from an included file and warns about it.
    set_target_properties(${name} PROPERTIES AUTOMOC OFF UNITY_BUILD ${TARNWICK_UNITY_BUILD})
    if(TARNWICK_UNITY_BUILD AND CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
        target_compile_options(${name} PRIVATE -Wno-subobject-linkage)
    endif()
    target_compile_definitions(${name} PRIVATE
        TARNWICK_TEST_DATA="${CMAKE_CURRENT_SOURCE_DIR}/data")
    if(TARNWICK_TEST_WHOLE_EXECUTABLES)
        add_test(NAME ${name} COMMAND ${name})
        set_tests_properties(${name} PROPERTIES
            ENVIRONMENT QT_QPA_PLATFORM=offscreen TIMEOUT 900)
    else()
        gtest_discover_tests(${name} DISCOVERY_MODE PRE_TEST DISCOVERY_TIMEOUT 60
            PROPERTIES ENVIRONMENT QT_QPA_PLATFORM=offscreen TIMEOUT 120)
    endif()
endfunction()
