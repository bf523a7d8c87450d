# All icons, drawn by drawIcons.py; where they are PNGs, rasterise makes them of the drawings.

find_package(Qt5 5.7 REQUIRED COMPONENTS Svg)
set(drawings ${CMAKE_CURRENT_SOURCE_DIR}/drawings)
file(GLOB drawing_scripts CONFIGURE_DEPENDS ${drawings}/*.py)

# A tool of the build, not a part of what is under test.
add_executable(rasterise drawings/rasterise.cpp)
target_link_libraries(rasterise PRIVATE Qt5::Gui Qt5::Svg)
set_target_properties(rasterise PROPERTIES COMPILE_OPTIONS "-O1" LINK_OPTIONS "" AUTOMOC OFF)

add_custom_command(OUTPUT ${tree}/icons.stamp
    COMMAND ${UTILSDLL_PYTHON} ${drawings}/drawIcons.py --qrc ${tree}/vek.qrc --out ${tree}
    COMMAND rasterise ${tree}/rasterise.list
    COMMAND ${CMAKE_COMMAND} -E touch ${tree}/icons.stamp
    DEPENDS ${drawing_scripts} ${tree}/vek.qrc rasterise
    COMMENT "Drawing the icons"
    VERBATIM)
list(APPEND tree_files ${tree}/icons.stamp)

# Paints the sheet that contactSheet.py lays all icons out on, see tools/pictures.
add_executable(paintSheet EXCLUDE_FROM_ALL drawings/paintSheet.cpp)
target_link_libraries(paintSheet PRIVATE Qt5::Gui Qt5::Svg)
set_target_properties(paintSheet PROPERTIES COMPILE_OPTIONS "-O1" LINK_OPTIONS "" AUTOMOC OFF)
