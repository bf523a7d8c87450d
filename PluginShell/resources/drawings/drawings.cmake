# All icons, drawn by drawIcons.py; where they are PNGs, rasterise makes them of the drawings.

find_package(Qt5 5.7 REQUIRED COMPONENTS Svg)
set(drawings ${CMAKE_CURRENT_SOURCE_DIR}/drawings)
file(GLOB drawing_scripts CONFIGURE_DEPENDS ${drawings}/*.py)

# Tools of the build aren't what sanitizers look at.
function(utilsdll_add_drawing_tool name)
    add_executable(${name} drawings/${name}.cpp)
    target_link_libraries(${name} PRIVATE Qt5::Gui Qt5::Svg)
    get_target_property(options ${name} COMPILE_OPTIONS)
    list(FILTER options EXCLUDE REGEX "-fsanitize")
    set_target_properties(${name} PROPERTIES COMPILE_OPTIONS "${options}" LINK_OPTIONS "" AUTOMOC OFF)
endfunction()

utilsdll_add_drawing_tool(rasterise)

file(STRINGS vek.qrc icons REGEX "<file>icons/")
list(TRANSFORM icons REPLACE " *<file>(.*)</file>" "${tree}/\\1")
add_custom_command(OUTPUT ${icons}
    COMMAND ${UTILSDLL_PYTHON} ${drawings}/drawIcons.py --qrc ${tree}/vek.qrc --out ${tree}
    COMMAND rasterise ${tree}/rasterise.list
    DEPENDS ${drawing_scripts} ${tree}/vek.qrc rasterise
    COMMENT "Drawing the icons"
    VERBATIM)
list(APPEND tree_files ${icons})

# Paints the sheet that contactSheet.py lays all icons out on, see tools/pictures.
utilsdll_add_drawing_tool(paintSheet)
set_target_properties(paintSheet PROPERTIES EXCLUDE_FROM_ALL ON)
