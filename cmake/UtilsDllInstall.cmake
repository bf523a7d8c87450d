# What is installed, for two packages: "Runtime" is what a host needs to run, "Development" what it
# needs to be built and tested.

include(CMakePackageConfigHelpers)

set(UTILSDLL_INCLUDE_DIR ${CMAKE_INSTALL_INCLUDEDIR}/UtilsDllkrnv3)
set(UTILSDLL_PACKAGE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/UtilsDllkrnv3)

install(TARGETS UtilsDllkrnv3 EXPORT UtilsDllkrnv3Targets
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
        COMPONENT Runtime NAMELINK_COMPONENT Development
    FILE_SET HEADERS DESTINATION ${UTILSDLL_INCLUDE_DIR} COMPONENT Development)
install(TARGETS FailurePicture EXPORT UtilsDllkrnv3Targets
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}/UtilsDllkrnv3/generic COMPONENT Development)
install(EXPORT UtilsDllkrnv3Targets
    NAMESPACE UtilsDll::
    DESTINATION ${UTILSDLL_PACKAGE_DIR}
    COMPONENT Development)

configure_package_config_file(cmake/UtilsDllkrnv3Config.cmake.in
    ${PROJECT_BINARY_DIR}/UtilsDllkrnv3Config.cmake
    INSTALL_DESTINATION ${UTILSDLL_PACKAGE_DIR})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/UtilsDllkrnv3ConfigVersion.cmake
    COMPATIBILITY SameMajorVersion)
install(FILES
    ${PROJECT_BINARY_DIR}/UtilsDllkrnv3Config.cmake
    ${PROJECT_BINARY_DIR}/UtilsDllkrnv3ConfigVersion.cmake
    cmake/UtilsDllAcceptance.cmake
    cmake/UtilsDllAcceptanceRun.py
    DESTINATION ${UTILSDLL_PACKAGE_DIR}
    COMPONENT Development)

if(UTILSDLL_SYSTEM_QTSOAP)
    install(FILES cmake/FindQtSoap.cmake
        DESTINATION ${UTILSDLL_PACKAGE_DIR} COMPONENT Development)
    set(UTILSDLL_PC_QTSOAP_LIBS " ${QtSoap_LIBRARY}")
    set(UTILSDLL_PC_QTSOAP_CFLAGS " -I${QtSoap_INCLUDE_DIR}")
endif()

# The pkg-config file finds its prefix from its own place, so that an install tree can be moved.
file(RELATIVE_PATH UTILSDLL_PC_PREFIX
    /prefix/${CMAKE_INSTALL_LIBDIR}/pkgconfig /prefix)
configure_file(cmake/UtilsDllkrnv3.pc.in ${PROJECT_BINARY_DIR}/UtilsDllkrnv3.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/UtilsDllkrnv3.pc
    DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig
    COMPONENT Development)

# The notices of what the library carries and uses, for a host's bundle.
get_target_property(notices notices NOTICES)
install(FILES ${notices}
    DESTINATION ${CMAKE_INSTALL_DATADIR}/UtilsDllkrnv3/Licenses
    COMPONENT Runtime)
