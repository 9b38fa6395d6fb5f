# Debian packages by CPack: the libraries, what it takes to build programs with them, and the tool. Scripts/package.sh
# builds them for the folders of a Debian system.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_CONTACT "UPnP Utilities")
set(CPACK_VERBATIM_VARIABLES ON)
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS # whatever the umask
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_PACKAGING_INSTALL_PREFIX ${CMAKE_INSTALL_PREFIX})

set(CPACK_COMPONENTS_ALL runtime development tool)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_ENABLE_COMPONENT_DEPENDS ON)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)

set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "${CMAKE_PROJECT_NAME} built using CMake") # none; each package has its own

set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME libupnputilities${UPNP_INTERFACE_VERSION})
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SECTION libs)
set(CPACK_COMPONENT_RUNTIME_DESCRIPTION "${PROJECT_DESCRIPTION}
DIDL-Lite to records and back, the choice of the resource that a renderer
plays best, parental locks, device hooks, configuration records and device
groups; and the small base libraries under it.")

set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libupnputilities-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_COMPONENT_DEVELOPMENT_DEPENDS runtime)
set(CPACK_COMPONENT_DEVELOPMENT_DESCRIPTION "${PROJECT_DESCRIPTION} (headers)
What it takes to build programs with libupnputilities: headers, and packages
for CMake and pkg-config.")

set(CPACK_DEBIAN_TOOL_PACKAGE_NAME upnputil)
set(CPACK_DEBIAN_TOOL_PACKAGE_SECTION utils)
set(CPACK_COMPONENT_TOOL_DEPENDS runtime)
set(CPACK_COMPONENT_TOOL_DESCRIPTION "UPnP/DLNA metadata, device hooks, configurations and groups by hand
A command-line tool over libupnputilities: prints and chooses among what
media servers answer, writes what they are asked for, and shows what a device
would say to a client, read from its configuration, and share with a group.")

find_program(DPKG_SHLIBDEPS dpkg-shlibdeps)
if(DPKG_SHLIBDEPS)
    set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
    set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${CMAKE_LIBRARY_OUTPUT_DIRECTORY})
    set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
endif()
include(CPack)
