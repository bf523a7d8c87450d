# What a bundle's "Licenses" folder needs for the fonts and the data that the library carries: pairs
# of the name there and the file to copy. BundledData.txt says which text belongs to what; each of
# the others is complete or comes with the common text that it refers to.
set(utilsdll_bundled_licences
    BundledData.txt     ${CMAKE_CURRENT_LIST_DIR}/BundledData.txt
    Roboto.txt          /usr/share/doc/fonts-roboto-unhinted/copyright
    OpenSans.txt        /usr/share/doc/fonts-open-sans/copyright
    Quicksand.txt       /usr/share/doc/fonts-quicksand/copyright
    Lensfun.txt         /usr/share/doc/liblensfun-data-v1/copyright
    iso-codes.txt       /usr/share/doc/iso-codes/copyright
    QtTranslations.txt  /usr/share/doc/qttranslations5-l10n/copyright
    Apache-2.0.txt      /usr/share/common-licenses/Apache-2.0
    LGPL-2.1.txt        /usr/share/common-licenses/LGPL-2.1
    GPL-3.txt           /usr/share/common-licenses/GPL-3)
