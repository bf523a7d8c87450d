# A missing input stops the configuration with a line that names its package; a present one doesn't.
#   cmake -DPROJECT=FOLDER -P missingFile.cmake
function(expect file succeeds)
    set(script ${CMAKE_CURRENT_BINARY_DIR}/require.cmake)
    file(WRITE ${script} "include(${PROJECT}/cmake/UtilsDllRequireFile.cmake)
        utilsdll_require_file(${file} fonts-quicksand)")
    execute_process(COMMAND ${CMAKE_COMMAND} -P ${script}
        RESULT_VARIABLE result OUTPUT_VARIABLE output ERROR_VARIABLE output)
    if(succeeds AND NOT result EQUAL 0)
        message(FATAL_ERROR "${file} is there, and yet: ${output}")
    elseif(NOT succeeds AND NOT (result AND output MATCHES "${file} is missing: install fonts-quicksand"))
        message(FATAL_ERROR "${file} isn't there, and this came: ${output}")
    endif()
endfunction()

expect(${PROJECT}/README.md TRUE)
expect(${PROJECT}/no-such-font.ttf FALSE)
