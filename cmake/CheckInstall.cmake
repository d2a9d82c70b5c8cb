# Installs the build folder BUILD_DIR into a fresh prefix under WORK_DIR, checks that every file
# a desktop installation needs is there (the manual inside the program), and validates the menu
# entry and the AppStream metainfo.
string(REPLACE "," ";" ICON_SIZES "${ICON_SIZES}")
if(NOT ICON_SIZES)
    message(FATAL_ERROR "No icon sizes given")
endif()
file(REMOVE_RECURSE ${WORK_DIR})
set(prefix ${WORK_DIR}/usr)
execute_process(COMMAND ${CMAKE_COMMAND} --install ${BUILD_DIR} --prefix ${prefix}
    RESULT_VARIABLE result OUTPUT_QUIET)
if(NOT result EQUAL 0)
    message(FATAL_ERROR "cmake --install failed: ${result}")
endif()

set(expected
    bin/tarnwick
    share/applications/tarnwick.desktop
    share/metainfo/io.github.tarnwick.Tarnwick.metainfo.xml
    share/icons/hicolor/scalable/apps/tarnwick.svg
    share/tarnwick/twdata.dat
    share/doc/tarnwick/copyright
    share/doc/tarnwick/changelog.gz)
foreach(size IN LISTS ICON_SIZES)
    list(APPEND expected share/icons/hicolor/${size}x${size}/apps/tarnwick.png)
endforeach()
set(missing "")
foreach(file IN LISTS expected)
    if(NOT EXISTS ${prefix}/${file})
        list(APPEND missing ${file})
    endif()
endforeach()
if(missing)
    message(FATAL_ERROR "Not installed: ${missing}")
endif()
execute_process(COMMAND test -x ${prefix}/bin/tarnwick RESULT_VARIABLE result)
if(NOT result EQUAL 0)
    message(FATAL_ERROR "bin/tarnwick is not executable")
endif()

# The manual is compiled into the program (no help file is installed beside it): its pages
# must be inside the installed executable.
foreach(page IN ITEMS "<title>Welcome to Tarnwick</title>"
        "<title>Where your data lives, backing it up and moving it</title>")
    file(STRINGS ${prefix}/bin/tarnwick found LIMIT_COUNT 1 REGEX "${page}")
    if(NOT found)
        message(FATAL_ERROR "The installed program does not carry the manual page ${page}")
    endif()
endforeach()

# Each PNG must be a PNG of its own size: the width and height sit at bytes 16 and 20.
foreach(size IN LISTS ICON_SIZES)
    set(png ${prefix}/share/icons/hicolor/${size}x${size}/apps/tarnwick.png)
    file(READ ${png} header LIMIT 24 HEX)
    string(SUBSTRING "${header}" 0 16 magic)
    string(SUBSTRING "${header}" 32 16 dimensions)
    math(EXPR hex_size "${size}" OUTPUT_FORMAT HEXADECIMAL)
    string(REPLACE "0x" "" hex_size "${hex_size}")
    string(LENGTH "${hex_size}" len)
    while(len LESS 8)
        set(hex_size "0${hex_size}")
        string(LENGTH "${hex_size}" len)
    endwhile()
    string(TOLOWER "${hex_size}${hex_size}" wanted)
    if(NOT magic STREQUAL "89504e470d0a1a0a" OR NOT dimensions STREQUAL wanted)
        message(FATAL_ERROR "${png} is not a ${size}x${size} PNG (${header})")
    endif()
endforeach()

find_program(DESKTOP_FILE_VALIDATE desktop-file-validate REQUIRED)
find_program(APPSTREAMCLI appstreamcli REQUIRED)
execute_process(COMMAND ${DESKTOP_FILE_VALIDATE} ${prefix}/share/applications/tarnwick.desktop
    RESULT_VARIABLE result OUTPUT_VARIABLE out ERROR_VARIABLE out)
if(NOT result EQUAL 0 OR NOT out STREQUAL "")
    message(FATAL_ERROR "desktop-file-validate: ${out}")
endif()
execute_process(COMMAND ${APPSTREAMCLI} validate --no-net --pedantic
    ${prefix}/share/metainfo/io.github.tarnwick.Tarnwick.metainfo.xml
    RESULT_VARIABLE result OUTPUT_VARIABLE out ERROR_VARIABLE out)
if(NOT result EQUAL 0)
    message(FATAL_ERROR "appstreamcli validate: ${out}")
endif()
message(STATUS "Install tree complete and valid: ${prefix}")
file(REMOVE_RECURSE ${WORK_DIR})
