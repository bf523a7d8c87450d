# The data that the product's other modules read from the library.

set(data ${CMAKE_CURRENT_SOURCE_DIR}/data)
set(UTILSDLL_COUNTRY_NAMES /usr/share/iso-codes/json/iso_3166-1.json
    CACHE INTERNAL "Where the names of countries come from")
set(UTILSDLL_LENSFUN_FOLDER /usr/share/lensfun/version_1
    CACHE INTERNAL "Where the correction data come from")
utilsdll_require_file(${UTILSDLL_COUNTRY_NAMES} iso-codes)
utilsdll_require_file(${UTILSDLL_LENSFUN_FOLDER} liblensfun-data-v1)
foreach(folder caf translations)
    file(MAKE_DIRECTORY ${tree}/${folder})
endforeach()

function(utilsdll_make_data script output)
    add_custom_command(OUTPUT ${tree}/${output}
        COMMAND ${UTILSDLL_PYTHON} ${data}/${script} ${ARGN} ${tree}/${output}
        DEPENDS ${data}/${script} ${ARGN}
        COMMENT "Making ${output}"
        VERBATIM)
    set(tree_files ${tree_files} ${tree}/${output} PARENT_SCOPE)
endfunction()

utilsdll_make_data(makeCaf.py caf/C35830a_001.caf)
utilsdll_make_data(makeCaf.py caf/C36841a_000.caf)
utilsdll_make_data(makeCatalogue.py caf/CAFList1010.db ${UTILSDLL_LENSFUN_FOLDER})
utilsdll_make_data(makeCountries.py translations/countries.en.txt ${UTILSDLL_COUNTRY_NAMES})

configure_file(data/CorrectionsStateMachine.xml ${tree}/other/CorrectionsStateMachine.xml COPYONLY)
list(APPEND tree_files ${tree}/other/CorrectionsStateMachine.xml)
