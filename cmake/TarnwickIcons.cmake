# The application icon: data/icons/tarnwick.svg is the drawing; the PNG sizes of the hicolor
# theme are made from it at build time with rsvg-convert (package librsvg2-bin). The PNGs are
# installed into the icon theme and compiled into the executable as a Qt resource.
find_program(RSVG_CONVERT_EXE rsvg-convert REQUIRED)

set(TARNWICK_ICON_SVG ${PROJECT_SOURCE_DIR}/data/icons/tarnwick.svg)
set(TARNWICK_ICON_SIZES 16 22 24 32 48 64 128 256)
set(TARNWICK_ICON_DIR ${PROJECT_BINARY_DIR}/icons)
set(TARNWICK_ICON_PNGS "")
foreach(size IN LISTS TARNWICK_ICON_SIZES)
    set(png ${TARNWICK_ICON_DIR}/tarnwick-${size}.png)
    add_custom_command(OUTPUT ${png}
        COMMAND ${CMAKE_COMMAND} -E make_directory ${TARNWICK_ICON_DIR}
        COMMAND ${RSVG_CONVERT_EXE} -w ${size} -h ${size} -o ${png} ${TARNWICK_ICON_SVG}
        DEPENDS ${TARNWICK_ICON_SVG}
        COMMENT "Drawing the ${size}x${size} application icon")
    list(APPEND TARNWICK_ICON_PNGS ${png})
endforeach()
add_custom_target(tarnwick_icons DEPENDS ${TARNWICK_ICON_PNGS})
