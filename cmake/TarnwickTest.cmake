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
# tests look at), precompiled once per test executable: parsing them again for every test
# source was most of the time of building the tests. (One header for all executables cannot be:
# each has its own folders in macros, and a precompiled header holds only under the same macros.)
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

function(tarnwick_add_test name)
    add_executable(${name} ${ARGN})
    if(TARNWICK_TEST_PCH)
        target_precompile_headers(${name} PRIVATE ${TARNWICK_TEST_PCH_HEADERS})
    endif()
    target_link_libraries(${name} PRIVATE tarnwick_test_support GTest::gmock Qt6::Test
                          tarnwick_warnings)
    target_compile_options(${name} PRIVATE ${TARNWICK_TEST_CODE_OPTIONS})
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
