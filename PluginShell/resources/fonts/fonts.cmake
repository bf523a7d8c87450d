# The fonts, of installed packages, under the family names that the style sheets address.

set(fonts ${CMAKE_CURRENT_SOURCE_DIR}/fonts)
set(roboto_dir /usr/share/fonts/truetype/roboto/unhinted/RobotoTTF)
set(open_sans_dir /usr/share/fonts/truetype/open-sans)
set(quicksand_dir /usr/share/fonts/truetype/quicksand)
utilsdll_require_file(${roboto_dir} fonts-roboto-unhinted)
utilsdll_require_file(${open_sans_dir} fonts-open-sans)
utilsdll_require_file(${quicksand_dir} fonts-quicksand)
set(UTILSDLL_FONT_FOLDERS ${roboto_dir} ${open_sans_dir} ${quicksand_dir}
    CACHE INTERNAL "Where the fonts come from")
execute_process(COMMAND ${UTILSDLL_PYTHON} -c "import fontTools"
    RESULT_VARIABLE without_fonttools ERROR_QUIET)
if(without_fonttools)
    message(FATAL_ERROR "Python's fontTools are missing: install python3-fonttools")
endif()

add_custom_command(OUTPUT ${tree}/fonts.stamp
    COMMAND ${UTILSDLL_PYTHON} ${fonts}/renameFonts.py
        ${UTILSDLL_FONT_FOLDERS} ${tree}/fonts
    COMMAND ${CMAKE_COMMAND} -E touch ${tree}/fonts.stamp
    DEPENDS ${fonts}/renameFonts.py
    COMMENT "Renaming the fonts"
    VERBATIM)
list(APPEND tree_files ${tree}/fonts.stamp)
