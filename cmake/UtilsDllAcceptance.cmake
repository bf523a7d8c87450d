# Makes a test of an acceptance script, for ctest. Needs CMake 3.17 and Python 3.7.
#
#   utilsdll_add_acceptance_test(
#       NAME name                   of the test
#       HOST target-or-path         the application that runs the script
#       SCRIPT file
#       [TIMEOUT seconds]           until the test is ended as failed, display and all; 120
#       [SCRIPT_TIMEOUT seconds]    until the script fails; 15 less, or half of a short TIMEOUT
#       [WILL_FAIL]                 the script's verdict is to be FAIL; a host that crashes, hangs,
#                                   writes no report or runs out of time fails the test all the same
#       [FAIL_REASON text]          what a line of the report has to hold then
#       [ARGUMENTS argument...]     of the host, with @SCRIPT@, @TIMEOUT@ (in milliseconds) and
#                                   @REPORT_DIR@; "--script @SCRIPT@ --timeout @TIMEOUT@
#                                   --report-dir @REPORT_DIR@", or the variable
#                                   UTILSDLL_ACCEPTANCE_ARGUMENTS
#       [FILES file-or-folder...]   copied to the folder that the host is started in
#       [PLATFORM X11|OFFSCREEN|NATIVE]
#                                   a display of its own, none, or the one that is there; X11, but
#                                   on a Mac NATIVE
#       [SCREEN WIDTHxHEIGHT]       size of the display; 1600x1200
#       [ENVIRONMENT NAME=value...]
#       [LABELS label...])          beside "acceptance"
#
# Each run has a home, XDG folders, a temporary folder, a D-Bus session and a display that nobody else
# uses, so that tests run in parallel. The script is copied to acceptance/<name> of the build folder,
# with a DefaultTemporarySettins.ini that lies beside it. The host is started there, and there the
# report and the picture of the failure come to lie.

include_guard(GLOBAL)

find_program(UTILSDLL_PYTHON python3 HINTS /usr/bin)

function(utilsdll_add_acceptance_test)
    set(call ${CMAKE_CURRENT_FUNCTION})
    cmake_parse_arguments(PARSE_ARGV 0 arg "WILL_FAIL"
        "NAME;HOST;SCRIPT;TIMEOUT;SCRIPT_TIMEOUT;FAIL_REASON;PLATFORM;SCREEN"
        "ARGUMENTS;FILES;ENVIRONMENT;LABELS")
    if(arg_UNPARSED_ARGUMENTS)
        message(FATAL_ERROR "${call}: unknown arguments: ${arg_UNPARSED_ARGUMENTS}")
    endif()
    if(arg_KEYWORDS_MISSING_VALUES)
        message(FATAL_ERROR "${call}: without a value: ${arg_KEYWORDS_MISSING_VALUES}")
    endif()
    foreach(required NAME HOST SCRIPT)
        if(NOT DEFINED arg_${required})
            message(FATAL_ERROR "${call}: ${required} is missing")
        endif()
    endforeach()
    if(NOT UTILSDLL_PYTHON)
        message(FATAL_ERROR "${call}: python3 is missing")
    endif()

    # The host's end comes early enough for its picture and for clearing away.
    if(NOT DEFINED arg_TIMEOUT)
        set(arg_TIMEOUT 120)
    endif()
    if(NOT arg_TIMEOUT MATCHES "^[0-9]+$" OR arg_TIMEOUT LESS 10)
        message(FATAL_ERROR "${call}: TIMEOUT is a whole number of seconds, 10 or more")
    endif()
    math(EXPR host_timeout "${arg_TIMEOUT} - 3")
    if(NOT DEFINED arg_SCRIPT_TIMEOUT)
        math(EXPR arg_SCRIPT_TIMEOUT "${arg_TIMEOUT} - 15")
        math(EXPR half "${arg_TIMEOUT} / 2")
        if(arg_SCRIPT_TIMEOUT LESS half)
            set(arg_SCRIPT_TIMEOUT ${half})
        endif()
    endif()
    if(NOT arg_SCRIPT_TIMEOUT MATCHES "^[0-9]+$" OR arg_SCRIPT_TIMEOUT GREATER_EQUAL host_timeout)
        message(FATAL_ERROR
            "${call}: SCRIPT_TIMEOUT is a whole number of seconds, less than TIMEOUT - 3")
    endif()

    if(NOT DEFINED arg_PLATFORM AND APPLE)
        set(arg_PLATFORM NATIVE)
    elseif(NOT DEFINED arg_PLATFORM)
        set(arg_PLATFORM X11)
    elseif(NOT arg_PLATFORM MATCHES "^(X11|OFFSCREEN|NATIVE)$")
        message(FATAL_ERROR "${call}: PLATFORM is X11, OFFSCREEN or NATIVE")
    endif()
    string(TOLOWER ${arg_PLATFORM} platform)
    if(NOT DEFINED arg_SCREEN)
        set(arg_SCREEN 1600x1200)
    elseif(NOT arg_SCREEN MATCHES "^[1-9][0-9]*x[1-9][0-9]*$")
        message(FATAL_ERROR "${call}: SCREEN is a size such as 1600x1200")
    endif()

    get_filename_component(arg_SCRIPT ${arg_SCRIPT} ABSOLUTE)
    get_source_file_property(generated ${arg_SCRIPT} GENERATED)
    if(NOT generated AND NOT EXISTS ${arg_SCRIPT})
        message(FATAL_ERROR "${call}: there is no script ${arg_SCRIPT}")
    endif()
    if(TARGET ${arg_HOST})
        set(host $<TARGET_FILE:${arg_HOST}>)
    else()
        set(host ${arg_HOST})
        if(NOT host MATCHES "^\\$<")
            get_filename_component(host ${host} ABSOLUTE)
        endif()
    endif()
    if(NOT DEFINED arg_ARGUMENTS)
        set(arg_ARGUMENTS ${UTILSDLL_ACCEPTANCE_ARGUMENTS})
        if(NOT arg_ARGUMENTS)
            set(arg_ARGUMENTS
                --script @SCRIPT@ --timeout @TIMEOUT@ --report-dir @REPORT_DIR@)
        endif()
    endif()

    set(options)
    if(arg_WILL_FAIL)
        list(APPEND options --will-fail)
    endif()
    if(DEFINED arg_FAIL_REASON)
        if(NOT arg_WILL_FAIL)
            message(FATAL_ERROR "${call}: FAIL_REASON goes with WILL_FAIL")
        endif()
        list(APPEND options --fail-reason=${arg_FAIL_REASON})
    endif()
    foreach(file ${arg_FILES})
        get_filename_component(file ${file} ABSOLUTE)
        list(APPEND options --file ${file})
    endforeach()
    set(plugins)
    if(TARGET UtilsDll::FailurePicture)
        # Qt looks for them in the folder "generic" of this one.
        set(plugins --plugins $<TARGET_FILE_DIR:UtilsDll::FailurePicture>/..)
    endif()

    # A name may hold what a folder's name can't.
    string(REGEX REPLACE "[^A-Za-z0-9._+-]" "_" folder "${arg_NAME}")
    if(NOT folder STREQUAL arg_NAME)
        string(SHA1 hash "${arg_NAME}")
        string(SUBSTRING ${hash} 0 8 hash)
        string(APPEND folder -${hash})
    endif()
    set(results ${CMAKE_CURRENT_BINARY_DIR}/acceptance/${folder})

    add_test(NAME ${arg_NAME}
        COMMAND ${UTILSDLL_PYTHON} ${CMAKE_CURRENT_FUNCTION_LIST_DIR}/UtilsDllAcceptanceRun.py
            --script ${arg_SCRIPT} --results ${results}
            --timeout ${host_timeout} --script-timeout ${arg_SCRIPT_TIMEOUT}
            --platform ${platform} --screen ${arg_SCREEN}
            ${plugins} ${options} -- ${host} ${arg_ARGUMENTS})
    set_tests_properties(${arg_NAME} PROPERTIES
        TIMEOUT ${arg_TIMEOUT}
        LABELS "acceptance;${arg_LABELS}"
        ENVIRONMENT "${arg_ENVIRONMENT}")
    if(arg_PLATFORM STREQUAL "NATIVE")
        set_tests_properties(${arg_NAME} PROPERTIES RESOURCE_LOCK utilsdll_native_display)
    endif()
endfunction()
