# The notices of everything of others that the product carries or uses, for the folder "Licenses" of a
# bundle and as the about box shows them. The two that begin with "About" say which text belongs to
# what; each of the others is complete or comes with the common text that it refers to.

set(notice_texts
    AboutFontsAndData   ${CMAKE_CURRENT_SOURCE_DIR}/data/AboutFontsAndData.txt
    AboutSoftware       ${CMAKE_CURRENT_SOURCE_DIR}/data/AboutSoftware.txt)
foreach(licence Apache-2.0 GPL-2 GPL-3 LGPL-2 LGPL-2.1 LGPL-3)
    list(APPEND notice_texts ${licence} /usr/share/common-licenses/${licence})
endforeach()
set(notice_packages
    GLib            libglib2.0-dev
    KWindowSystem   libkf5windowsystem-dev
    Lensfun         liblensfun-data-v1
    OpenSans        fonts-open-sans
    Qt              qtbase5-dev
    QtScript        qtscript5-dev
    QtSvg           libqt5svg5-dev
    QtTranslations  qttranslations5-l10n
    QuaZIP          libquazip1-qt5-dev
    Quicksand       fonts-quicksand
    Roboto          fonts-roboto-unhinted
    bzip2           libbz2-dev
    fmt             libfmt-dev
    iso-codes       iso-codes
    libplist        libplist-dev
    libsystemd      libsystemd-dev
    spdlog          libspdlog-dev
    zlib            zlib1g-dev)
while(notice_packages)
    list(POP_FRONT notice_packages name package)
    utilsdll_require_file(/usr/share/doc/${package}/copyright ${package})
    list(APPEND notice_texts ${name} /usr/share/doc/${package}/copyright)
endwhile()

set(notices)
while(notice_texts)
    list(POP_FRONT notice_texts name text)
    set(notice ${CMAKE_CURRENT_BINARY_DIR}/Licenses/${name}.txt)
    add_custom_command(OUTPUT ${notice}
        COMMAND ${UTILSDLL_PYTHON} ${CMAKE_CURRENT_SOURCE_DIR}/data/makeNotice.py ${text} ${notice}
        DEPENDS data/makeNotice.py ${text}
        COMMENT "Making the notice ${name}"
        VERBATIM)
    list(APPEND notices ${notice})
endwhile()
add_custom_target(notices ALL DEPENDS ${notices})
set_target_properties(notices PROPERTIES
    NOTICES "${notices}"
    FOLDER_OF_NOTICES ${CMAKE_CURRENT_BINARY_DIR}/Licenses)
