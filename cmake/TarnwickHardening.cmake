# The hardening a Debian package is built with (dpkg-buildflags' "hardening=+all" of Debian 12):
# stack protector, fortified C library calls, read-only relocations bound at start-up and a
# position-independent executable. On by default for GCC and Clang outside Windows; the
# package test checks the packaged program with hardening-check.
option(TARNWICK_HARDENING "Build with the distribution's hardening flags" ON)

set(TARNWICK_HARDENED OFF)
if(NOT TARNWICK_HARDENING OR WIN32 OR NOT CMAKE_CXX_COMPILER_ID MATCHES "GNU|Clang")
    return()
endif()
set(TARNWICK_HARDENED ON)

# Executables link with -pie. Qt (built with reduced relocations) puts -fPIC on everything
# that links it, which a position-independent executable accepts.
include(CheckPIESupported)
check_pie_supported(LANGUAGES CXX)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)

add_compile_options(-fstack-protector-strong)

# Fortified calls need optimisation: not in a Debug build, nor for code built with -O0 (the
# test code, see TARNWICK_TEST_CODE_OPTIONS), where the C library would warn. The sanitizers
# check those calls themselves and replace them; fortifying them too hides errors from them.
if(NOT TARNWICK_SANITIZE)
    add_compile_definitions(
        "$<$<AND:$<NOT:$<CONFIG:Debug>>,$<NOT:$<IN_LIST:-O0,$<TARGET_PROPERTY:COMPILE_OPTIONS>>>>:_FORTIFY_SOURCE=2>")
endif()

add_link_options(LINKER:-z,relro LINKER:-z,now)
