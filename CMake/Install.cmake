# What cmake --install puts under a prefix: libraries, public headers, the CMake and pkg-config packages, the tool with
# its manual page and completion. Everything finds everything else by relative paths, so that the tree can be moved.
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

set(theLibraries zoOS zoLog zo zoltTools UPnPStack UPnPUtilities)
set(thePackageDirectory ${CMAKE_INSTALL_LIBDIR}/cmake/UPnPUtilities)

set_target_properties(${theLibraries} PROPERTIES INSTALL_RPATH $ORIGIN)
install(TARGETS ${theLibraries} EXPORT UPnPUtilities
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT runtime NAMELINK_COMPONENT development
    ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT development
    FILE_SET HEADERS DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/upnputilities COMPONENT development)

# The programs of a project that this one is a part of are installed beside the libraries; they look for them there. The
# linker reads it from a file, because a dollar sign does not reach it unchanged otherwise.
file(RELATIVE_PATH theLibrariesFromPrograms ${CMAKE_INSTALL_FULL_BINDIR} ${CMAKE_INSTALL_FULL_LIBDIR})
if(NOT PROJECT_IS_TOP_LEVEL AND BUILD_SHARED_LIBS AND NOT CMAKE_SKIP_INSTALL_RPATH AND NOT CMAKE_SKIP_RPATH)
    set(theRunPath ${PROJECT_BINARY_DIR}/runpath.txt)
    file(WRITE ${theRunPath} "-rpath $ORIGIN/${theLibrariesFromPrograms}\n")
    foreach(theLibrary ${theLibraries})
        target_link_options(${theLibrary} INTERFACE
            $<BUILD_INTERFACE:$<$<STREQUAL:$<TARGET_PROPERTY:TYPE>,EXECUTABLE>:LINKER:@${theRunPath}>>)
    endforeach()
endif()

# For find_package(UPnPUtilities).
install(EXPORT UPnPUtilities FILE UPnPUtilitiesTargets.cmake NAMESPACE UPnPUtilities::
    DESTINATION ${thePackageDirectory} COMPONENT development)
configure_package_config_file(CMake/UPnPUtilitiesConfig.cmake.in ${PROJECT_BINARY_DIR}/UPnPUtilitiesConfig.cmake
    INSTALL_DESTINATION ${thePackageDirectory})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/UPnPUtilitiesConfigVersion.cmake COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/UPnPUtilitiesConfig.cmake ${PROJECT_BINARY_DIR}/UPnPUtilitiesConfigVersion.cmake
    DESTINATION ${thePackageDirectory} COMPONENT development)

# For pkg-config. What a program has to add to archives is the C++ runtime.
set(theRuntime ${CMAKE_CXX_IMPLICIT_LINK_LIBRARIES})
list(FILTER theRuntime EXCLUDE REGEX "gcc|^c$|^/")
list(TRANSFORM theRuntime PREPEND -l)
list(JOIN theRuntime " " theRuntime)
set(thePkgConfigDirectory ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
file(RELATIVE_PATH thePrefixFromPkgConfig ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig ${CMAKE_INSTALL_PREFIX})
string(REGEX REPLACE "/$" "" thePrefixFromPkgConfig ${thePrefixFromPkgConfig})
configure_file(CMake/upnputilities.pc.in ${PROJECT_BINARY_DIR}/upnputilities.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/upnputilities.pc DESTINATION ${thePkgConfigDirectory} COMPONENT development)
install(FILES CHANGELOG.md DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/upnputilities COMPONENT development)

if(UPNP_BUILD_TOOL)
    set_target_properties(upnputil PROPERTIES INSTALL_RPATH $ORIGIN/${theLibrariesFromPrograms})
    install(TARGETS upnputil RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT tool)
    configure_file(Docs/upnputil.1 ${PROJECT_BINARY_DIR}/upnputil.1 @ONLY)
    install(FILES ${PROJECT_BINARY_DIR}/upnputil.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT tool)
    install(FILES Tools/upnputil/completion/upnputil DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions
        COMPONENT tool)
    install(FILES Docs/upnputil.schema.json DESTINATION ${CMAKE_INSTALL_DATADIR}/upnputil COMPONENT tool)
endif()
