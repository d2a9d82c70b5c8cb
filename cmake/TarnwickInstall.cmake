# Installing Tarnwick like a desktop application, and its Debian package:
#   cmake --install <build> --prefix /usr   (or /usr/local, or a staging folder)
#   cpack -G DEB                             (in the build folder)
include(GNUInstallDirs)

set(TARNWICK_APP_ID io.github.tarnwick.Tarnwick)
set(TARNWICK_DATA ${PROJECT_SOURCE_DIR}/data)

install(TARGETS tarnwick RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} BUNDLE DESTINATION .)
install(FILES ${TARNWICK_DATA}/tarnwick.desktop DESTINATION ${CMAKE_INSTALL_DATADIR}/applications)
install(FILES ${TARNWICK_DATA}/${TARNWICK_APP_ID}.metainfo.xml
        DESTINATION ${CMAKE_INSTALL_DATADIR}/metainfo)
install(FILES ${TARNWICK_ICON_SVG}
        DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/scalable/apps)
foreach(size IN LISTS TARNWICK_ICON_SIZES)
    install(FILES ${TARNWICK_ICON_DIR}/tarnwick-${size}.png
            DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/${size}x${size}/apps
            RENAME tarnwick.png)
endforeach()
# The sample catalogue, copied into the user's folder on the first start when asked for.
install(FILES ${TARNWICK_DATA}/sample/twdata.dat DESTINATION ${CMAKE_INSTALL_DATADIR}/tarnwick)
# The help, once there is one in the source tree.
if(EXISTS ${TARNWICK_DATA}/help)
    install(DIRECTORY ${TARNWICK_DATA}/help/ DESTINATION ${CMAKE_INSTALL_DATADIR}/tarnwick/help)
endif()

if(UNIX AND NOT APPLE)
    # Debian package documentation: the copyright file and a compressed change log.
    set(TARNWICK_CHANGELOG_GZ ${PROJECT_BINARY_DIR}/debian/changelog.gz)
    add_custom_command(OUTPUT ${TARNWICK_CHANGELOG_GZ}
        COMMAND ${CMAKE_COMMAND} -E make_directory ${PROJECT_BINARY_DIR}/debian
        COMMAND gzip -9 -n -c ${TARNWICK_DATA}/debian/changelog > ${TARNWICK_CHANGELOG_GZ}
        DEPENDS ${TARNWICK_DATA}/debian/changelog VERBATIM)
    add_custom_target(tarnwick_changelog ALL DEPENDS ${TARNWICK_CHANGELOG_GZ})
    install(FILES ${TARNWICK_DATA}/debian/copyright ${TARNWICK_CHANGELOG_GZ}
            DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/tarnwick)
endif()

set(CPACK_PACKAGE_NAME tarnwick)
set(CPACK_PACKAGE_VENDOR "Tarnwick developers")
set(CPACK_PACKAGE_CONTACT "Tarnwick developers <tarnwick@example.org>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "price list and customer quote program")
set(CPACK_PACKAGE_DESCRIPTION
    "Tarnwick keeps a sales person's price list, a catalogue of products with\n\
quantity price points, and prepares customer quotes from it.")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION misc)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# Qt loads its SQLite driver as a plug-in, which the computed dependencies cannot see.
set(CPACK_DEBIAN_PACKAGE_DEPENDS "libqt6sql6-sqlite")
set(CPACK_DEBIAN_COMPRESSION_TYPE xz)
include(CPack)
