# What cmake --install puts under a prefix: libraries, public headers, the CMake and pkg-config packages, the tool with
# its manual page and completion. Everything finds everything else by relative paths, so that the tree can be moved.
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

set(theLibraries zoOS zoLog zo zoltTools UPnPStack UPnPUtilities)
set(theHeaderDirectory ${CMAKE_INSTALL_INCLUDEDIR}/upnputilities)
set(thePackageDirectory ${CMAKE_INSTALL_LIBDIR}/cmake/UPnPUtilities)

file(RELATIVE_PATH theLibrariesFromTool ${CMAKE_INSTALL_FULL_BINDIR} ${CMAKE_INSTALL_FULL_LIBDIR})
set_target_properties(${theLibraries} PROPERTIES INSTALL_RPATH $ORIGIN)
set_target_properties(upnputil PROPERTIES INSTALL_RPATH $ORIGIN/${theLibrariesFromTool})

install(TARGETS ${theLibraries} EXPORT UPnPUtilities
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT runtime NAMELINK_COMPONENT development
    INCLUDES DESTINATION ${theHeaderDirectory})

# install_headers(ROOT FOLDER...): the headers of folders under an include root; headers in folders of these are private.
function(install_headers aRoot)
    foreach(theFolder ${ARGN})
        file(GLOB theHeaders CONFIGURE_DEPENDS ${aRoot}/${theFolder}/*.h)
        install(FILES ${theHeaders} DESTINATION ${theHeaderDirectory}/${theFolder} COMPONENT development)
        set_property(GLOBAL APPEND PROPERTY UPNP_PUBLIC_HEADERS ${theHeaders})
    endforeach()
endfunction()

set(theRoot ${PROJECT_SOURCE_DIR}/Libs/Internal)
install_headers(${theRoot} UPnP/Utilities UPnP/Stack UPnP/ControlPoint/Stack)
install_headers(${PROJECT_BINARY_DIR}/include UPnP/Utilities)
foreach(theLibrary zoOS zoLog zo zoltTools)
    install_headers(${theRoot}/${theLibrary} ${theLibrary})
endforeach()

# For find_package(UPnPUtilities).
install(EXPORT UPnPUtilities FILE UPnPUtilitiesTargets.cmake NAMESPACE UPnPUtilities::
    DESTINATION ${thePackageDirectory} COMPONENT development)
configure_package_config_file(CMake/UPnPUtilitiesConfig.cmake.in ${PROJECT_BINARY_DIR}/UPnPUtilitiesConfig.cmake
    INSTALL_DESTINATION ${thePackageDirectory})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/UPnPUtilitiesConfigVersion.cmake COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/UPnPUtilitiesConfig.cmake ${PROJECT_BINARY_DIR}/UPnPUtilitiesConfigVersion.cmake
    DESTINATION ${thePackageDirectory} COMPONENT development)

# For pkg-config.
set(thePkgConfigDirectory ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
file(RELATIVE_PATH thePrefixFromPkgConfig ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig ${CMAKE_INSTALL_PREFIX})
string(REGEX REPLACE "/$" "" thePrefixFromPkgConfig ${thePrefixFromPkgConfig})
configure_file(CMake/upnputilities.pc.in ${PROJECT_BINARY_DIR}/upnputilities.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/upnputilities.pc DESTINATION ${thePkgConfigDirectory} COMPONENT development)

install(TARGETS upnputil RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT tool)
configure_file(Docs/upnputil.1 ${PROJECT_BINARY_DIR}/upnputil.1 @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/upnputil.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT tool)
install(FILES Tools/upnputil/completion/upnputil DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions
    COMPONENT tool)
install(FILES CHANGELOG.md DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/upnputilities COMPONENT development)
