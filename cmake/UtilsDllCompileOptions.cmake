# Warnings, sanitizers and definitions of all our own code. Consumers of the package get none of them.

add_compile_options(-Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Woverloaded-virtual)
if(UTILSDLL_WERROR)
    add_compile_options(-Werror)
endif()

add_compile_definitions(
    QT_NO_KEYWORDS             # host libraries own the words "signals" and "slots"
    QT_NO_DEPRECATED_WARNINGS  # 5.15 deprecates what 5.7, our floor, needs
)

if(UTILSDLL_SANITIZER)
    add_compile_options(-fsanitize=${UTILSDLL_SANITIZER} -fno-omit-frame-pointer)
    add_link_options(-fsanitize=${UTILSDLL_SANITIZER})
endif()

# Removing the settings overlay passes the address of a null reference, which compilers otherwise
# take for impossible. Each source file that receives or makes such a reference is built with this.
function(utilsdll_allow_null_reference target)
    set(options -fno-delete-null-pointer-checks)
    if(UTILSDLL_SANITIZER)
        list(APPEND options -fno-sanitize=null)
    endif()
    set_source_files_properties(${ARGN} TARGET_DIRECTORY ${target} PROPERTIES
        COMPILE_OPTIONS "${options}")
endfunction()
