# Two Debian packages by CPack, of what UtilsDllInstall installs:
#   libutilsdllkrnv3      the library, the product's logger and the notices
#   libutilsdllkrnv3-dev  headers, CMake package with the acceptance tests, pkg-config file
# Configure with -DCMAKE_INSTALL_PREFIX=/usr for the folders of Debian's architectures, build, and run
# cpack; the packages come to lie in "packages" of the build folder.

find_program(UTILSDLL_DPKG_SHLIBDEPS dpkg-shlibdeps)
mark_as_advanced(UTILSDLL_DPKG_SHLIBDEPS)
if(NOT UTILSDLL_DPKG_SHLIBDEPS)
    message(STATUS "No Debian packages can be made: that needs dpkg-dev and file")
    return()
endif()

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME libutilsdllkrnv3)
set(CPACK_PACKAGE_VENDOR "Vek Labs")
set(CPACK_PACKAGE_CONTACT "Vek Labs <support@vek.example>")
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "") # each package has one of its own
set(CPACK_PACKAGE_DIRECTORY ${PROJECT_BINARY_DIR}/packages)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)

set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_GROUPING ONE_PER_GROUP)
set(CPACK_COMPONENTS_ALL Runtime RuntimePapers Development DevelopmentPapers)

set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_COMPRESSION_TYPE xz)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${PROJECT_BINARY_DIR}/PluginShell)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY ">=")

set(package_version ${PROJECT_VERSION}-${CPACK_DEBIAN_PACKAGE_RELEASE})
set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME libutilsdllkrnv3)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_CONTROL_EXTRA ${PROJECT_SOURCE_DIR}/cmake/package/triggers)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_DEPENDS libqt5svg5) # reads the icons, loaded by Qt
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SUGGESTS "zenity | kdialog | x11-utils")
set(CPACK_DEBIAN_RUNTIME_DESCRIPTION "shared utility library of Vek Marlowick 3
The floor under the photo correction application Vek Marlowick 3 and its
plug-ins: settings, data paths, deferred calls, dialogs, look and languages,
services of windows and of the desktop, a logger, and a host for acceptance
tests that are written as scripts.")

set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libutilsdllkrnv3-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS
    "libutilsdllkrnv3 (= ${package_version}), qtbase5-dev, qtscript5-dev, python3")
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_RECOMMENDS "xvfb, openbox, dbus-daemon, libnss-wrapper")
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SUGGESTS "cmake, pkg-config")
set(CPACK_DEBIAN_DEVELOPMENT_DESCRIPTION "shared utility library of Vek Marlowick 3 - development
The floor under the photo correction application Vek Marlowick 3 and its
plug-ins. This package holds the headers, the CMake package, which registers
acceptance scripts with CTest, and the pkg-config file.")

# What Debian wants to find beside the files, and no other installation needs.
set(papers ${PROJECT_BINARY_DIR}/package)
file(READ ${PROJECT_SOURCE_DIR}/PluginShell/resources/data/AboutFontsAndData.txt about_data)
file(READ ${PROJECT_SOURCE_DIR}/PluginShell/resources/data/AboutSoftware.txt about_software)
string(TIMESTAMP date "%a, %d %b %Y %H:%M:%S +0000" UTC)
configure_file(cmake/package/copyright.in ${papers}/copyright @ONLY)
configure_file(cmake/package/changelog.in ${papers}/changelog.Debian @ONLY)
configure_file(CHANGELOG.md ${papers}/changelog COPYONLY)
foreach(changelog changelog changelog.Debian)
    execute_process(COMMAND gzip -9nkf ${papers}/${changelog} COMMAND_ERROR_IS_FATAL ANY)
endforeach()
install(FILES ${papers}/copyright ${papers}/changelog.gz ${papers}/changelog.Debian.gz
    DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/libutilsdllkrnv3
    COMPONENT RuntimePapers EXCLUDE_FROM_ALL)
install(FILES cmake/package/libutilsdllkrnv3.overrides
    DESTINATION ${CMAKE_INSTALL_DATADIR}/lintian/overrides RENAME libutilsdllkrnv3
    COMPONENT RuntimePapers EXCLUDE_FROM_ALL)
file(CREATE_LINK libutilsdllkrnv3 ${papers}/libutilsdllkrnv3-dev SYMBOLIC)
install(FILES ${papers}/libutilsdllkrnv3-dev
    DESTINATION ${CMAKE_INSTALL_DATADIR}/doc
    COMPONENT DevelopmentPapers EXCLUDE_FROM_ALL)

include(CPack)
cpack_add_component_group(Runtime)
cpack_add_component_group(Development)
cpack_add_component(Runtime GROUP Runtime)
cpack_add_component(RuntimePapers GROUP Runtime)
cpack_add_component(Development GROUP Development)
cpack_add_component(DevelopmentPapers GROUP Development)
