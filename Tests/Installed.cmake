# Tests of what cmake --install gives, as programs find it that are not part of the project.
find_program(UPNP_PKG_CONFIG pkg-config)
set(theTests cmake tool)
if(UPNP_PKG_CONFIG)
    list(APPEND theTests pkg-config)
endif()

set(theScript ${CMAKE_CURRENT_LIST_DIR}/Consumer/run.sh)
set(theTree ${CMAKE_CURRENT_BINARY_DIR}/Installed/tree)
add_test(NAME Install COMMAND ${theScript} install ${PROJECT_BINARY_DIR} ${theTree})
set_tests_properties(Install PROPERTIES FIXTURES_SETUP Installed)
foreach(theTest ${theTests})
    add_test(NAME Installed-${theTest} COMMAND ${theScript} ${theTest} ${theTree} ${PROJECT_VERSION})
    set_tests_properties(Installed-${theTest} PROPERTIES FIXTURES_REQUIRED Installed)
    list(APPEND theNames Installed-${theTest})
endforeach()
set_tests_properties(Install ${theNames} PROPERTIES LABELS install TIMEOUT 120 ENVIRONMENT
    "CMAKE=${CMAKE_COMMAND};CMAKE_GENERATOR=${CMAKE_GENERATOR};CC=${CMAKE_C_COMPILER};CXX=${CMAKE_CXX_COMPILER};PKG_CONFIG=${UPNP_PKG_CONFIG}")

if(UPNP_DOXYGEN AND UPNP_AWK)
    add_test(NAME Manual COMMAND ${CMAKE_COMMAND} --build ${PROJECT_BINARY_DIR} --target docs)
    set_tests_properties(Manual PROPERTIES LABELS install)
endif()
