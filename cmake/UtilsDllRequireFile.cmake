# Stops the configuration if FILE, which PACKAGE brings, is missing.
function(utilsdll_require_file file package)
    if(NOT EXISTS ${file})
        message(FATAL_ERROR "${file} is missing: install ${package}")
    endif()
endfunction()
