# The fonts, of installed packages, under the family names that the style sheets address.

set(roboto_dir /usr/share/fonts/truetype/roboto/unhinted/RobotoTTF)
set(open_sans_dir /usr/share/fonts/truetype/open-sans)
set(quicksand_dir /usr/share/fonts/truetype/quicksand)
set(font_sources)
foreach(weight Bold Light Medium Regular)
    utilsdll_require_file(${roboto_dir}/Roboto-${weight}.ttf fonts-roboto-unhinted)
    list(APPEND font_sources ${roboto_dir}/Roboto-${weight}.ttf)
endforeach()
utilsdll_require_file(${open_sans_dir}/OpenSans-Light.ttf fonts-open-sans)
list(APPEND font_sources ${open_sans_dir}/OpenSans-Light.ttf)
foreach(weight Light Medium)
    utilsdll_require_file(${quicksand_dir}/Quicksand-${weight}.ttf fonts-quicksand)
    list(APPEND font_sources ${quicksand_dir}/Quicksand-${weight}.ttf)
endforeach()
execute_process(COMMAND ${UTILSDLL_PYTHON} -c "import fontTools"
    RESULT_VARIABLE without_fonttools ERROR_QUIET)
if(without_fonttools)
    message(FATAL_ERROR "Python's fontTools are missing: install python3-fonttools")
endif()

set(UTILSDLL_FONT_FOLDERS ${roboto_dir} ${open_sans_dir} ${quicksand_dir}
    CACHE INTERNAL "Where the fonts come from")
file(STRINGS vek.qrc fonts REGEX "<file>fonts/")
list(TRANSFORM fonts REPLACE " *<file>(.*)</file>" "${tree}/\\1")
set(script ${CMAKE_CURRENT_SOURCE_DIR}/fonts/renameFonts.py)
add_custom_command(OUTPUT ${fonts}
    COMMAND ${UTILSDLL_PYTHON} ${script} ${UTILSDLL_FONT_FOLDERS} ${tree}/fonts
    DEPENDS ${script} ${font_sources}
    COMMENT "Renaming the fonts"
    VERBATIM)
list(APPEND tree_files ${fonts})
