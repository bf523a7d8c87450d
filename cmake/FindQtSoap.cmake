# Finds an installed QtSoap: the header qtsoap.h and the library.
#
# QtSoap_FOUND           whether both are there
# QtSoap::QtSoap         the target to link, with the Qt modules that it needs
#
# The cache variables QtSoap_INCLUDE_DIR and QtSoap_LIBRARY, or CMAKE_PREFIX_PATH, lead to a place
# that isn't one of the system's.

find_path(QtSoap_INCLUDE_DIR
    NAMES qtsoap.h
    PATH_SUFFIXES QtSoap qtsoap qt5/QtSoap)
find_library(QtSoap_LIBRARY
    NAMES Qt5Soap QtSoap qtsoap)

include(FindPackageHandleStandardArgs)
find_package_handle_standard_args(QtSoap REQUIRED_VARS QtSoap_LIBRARY QtSoap_INCLUDE_DIR)
mark_as_advanced(QtSoap_INCLUDE_DIR QtSoap_LIBRARY)

if(QtSoap_FOUND AND NOT TARGET QtSoap::QtSoap)
    find_package(Qt5 5.7 QUIET REQUIRED COMPONENTS Core Xml Network)
    add_library(QtSoap::QtSoap UNKNOWN IMPORTED)
    set_target_properties(QtSoap::QtSoap PROPERTIES
        IMPORTED_LOCATION "${QtSoap_LIBRARY}"
        INTERFACE_INCLUDE_DIRECTORIES "${QtSoap_INCLUDE_DIR}"
        INTERFACE_LINK_LIBRARIES "Qt5::Xml;Qt5::Network;Qt5::Core")
endif()
