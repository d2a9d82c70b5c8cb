# Fails when a source of the project is longer than the house limit of lines, naming each one.
#     cmake -DROOT=<source folder> [-DLIMIT=600] -P CheckFileLengths.cmake
if(NOT DEFINED LIMIT)
    set(LIMIT 600)
endif()
file(GLOB_RECURSE sources
     ${ROOT}/src/*.h ${ROOT}/src/*.cpp ${ROOT}/tests/*.h ${ROOT}/tests/*.cpp
     ${ROOT}/bench/*.h ${ROOT}/bench/*.cpp ${ROOT}/fuzz/*.h ${ROOT}/fuzz/*.cpp)
set(too_long "")
foreach(source IN LISTS sources)
    # file(STRINGS) leaves out empty lines: count the line ends instead.
    file(READ ${source} text)
    string(REGEX MATCHALL "\n" ends "${text}")
    list(LENGTH ends count)
    if(count GREATER LIMIT)
        file(RELATIVE_PATH name ${ROOT} ${source})
        string(APPEND too_long "\n  ${name}: ${count} lines")
    endif()
endforeach()
if(too_long)
    message(FATAL_ERROR "Sources longer than ${LIMIT} lines (split them):${too_long}")
endif()
