# Builds the Debian package in BUILD_DIR with cpack, lists it, checks that its dependencies
# were computed (the Qt and C++ libraries) and runs lintian on it, which must report no error.
file(GLOB old ${BUILD_DIR}/tarnwick_*.deb)
if(old)
    file(REMOVE ${old})
endif()
execute_process(COMMAND ${CPACK} -G DEB WORKING_DIRECTORY ${BUILD_DIR}
    RESULT_VARIABLE result OUTPUT_VARIABLE out ERROR_VARIABLE out)
execute_process(COMMAND dpkg --print-architecture OUTPUT_VARIABLE arch
    OUTPUT_STRIP_TRAILING_WHITESPACE)
set(deb ${BUILD_DIR}/tarnwick_${VERSION}_${arch}.deb)
if(NOT result EQUAL 0 OR NOT EXISTS ${deb})
    message(FATAL_ERROR "cpack -G DEB did not make ${deb}: ${out}")
endif()

execute_process(COMMAND dpkg-deb -c ${deb} OUTPUT_VARIABLE listing RESULT_VARIABLE result)
foreach(file ./usr/bin/tarnwick ./usr/share/applications/tarnwick.desktop
        ./usr/share/icons/hicolor/scalable/apps/tarnwick.svg
        ./usr/share/icons/hicolor/48x48/apps/tarnwick.png
        ./usr/share/metainfo/io.github.tarnwick.Tarnwick.metainfo.xml
        ./usr/share/tarnwick/twdata.dat ./usr/share/doc/tarnwick/copyright)
    string(FIND "${listing}" " ${file}\n" at)
    if(NOT result EQUAL 0 OR at EQUAL -1)
        message(FATAL_ERROR "${file} is not in the package:\n${listing}")
    endif()
endforeach()

execute_process(COMMAND dpkg-deb -f ${deb} Depends OUTPUT_VARIABLE depends
    OUTPUT_STRIP_TRAILING_WHITESPACE)
foreach(library libqt6widgets6 libqt6gui6 libqt6core6 libqt6sql6 libsqlite3-0 libstdc\\+\\+6
        libc6)
    if(NOT depends MATCHES "(^|, )${library} \\(>= ")
        message(FATAL_ERROR "Depends lacks ${library}: ${depends}")
    endif()
endforeach()
if(NOT depends MATCHES "(^|, )libqt6sql6-sqlite(,|$)")
    message(FATAL_ERROR "Depends lacks Qt's SQLite driver libqt6sql6-sqlite: ${depends}")
endif()

find_program(LINTIAN lintian REQUIRED)
execute_process(COMMAND ${LINTIAN} --fail-on error --no-cfg ${deb}
    RESULT_VARIABLE result OUTPUT_VARIABLE out ERROR_VARIABLE out)
if(NOT result EQUAL 0)
    message(FATAL_ERROR "lintian found errors:\n${out}")
endif()
message(STATUS "Package ${deb}: Depends: ${depends}\nlintian:\n${out}")
