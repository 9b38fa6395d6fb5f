# The target docs makes the manual in the folder manual of the build, by Doxygen; whatever Doxygen warns of is an error.
find_program(DOXYGEN doxygen)
find_program(AWK awk)
if(NOT DOXYGEN OR NOT AWK)
    return()
endif()

get_property(theHeaders GLOBAL PROPERTY UPNP_PUBLIC_HEADERS)
file(GLOB thePages CONFIGURE_DEPENDS Docs/*.md)
set(theManualDirectory ${PROJECT_BINARY_DIR}/manual)
set(theManualRoots ${PROJECT_SOURCE_DIR} ${PROJECT_SOURCE_DIR}/Libs/Internal ${PROJECT_BINARY_DIR}/include)
foreach(theLibrary zoOS zoLog zo zoltTools)
    list(APPEND theManualRoots ${PROJECT_SOURCE_DIR}/Libs/Internal/${theLibrary})
endforeach()
set(theManualInput ${thePages} ${PROJECT_SOURCE_DIR}/CHANGELOG.md ${theHeaders})
foreach(theList theManualInput theManualRoots)
    list(TRANSFORM ${theList} REPLACE "^(.+)$" "\"\\1\"")
    list(JOIN ${theList} " " ${theList})
endforeach()

configure_file(Docs/Doxyfile.in ${PROJECT_BINARY_DIR}/Doxyfile @ONLY)
add_custom_target(docs
    COMMAND ${CMAKE_COMMAND} -E rm -rf ${theManualDirectory}
    COMMAND ${CMAKE_COMMAND} -E make_directory ${theManualDirectory}
    COMMAND ${DOXYGEN} ${PROJECT_BINARY_DIR}/Doxyfile
    COMMENT "Manual: ${theManualDirectory}/index.html"
    VERBATIM)
