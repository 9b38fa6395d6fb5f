# The target docs makes the manual in the folder manual of the build, by Doxygen; whatever Doxygen warns of is an error.
find_program(UPNP_DOXYGEN doxygen)
find_program(UPNP_AWK awk)
if(NOT UPNP_DOXYGEN OR NOT UPNP_AWK)
    add_custom_target(docs
        COMMAND ${CMAKE_COMMAND} -E echo "The manual wants doxygen and awk (on Debian: apt-get install doxygen mawk)."
        COMMAND ${CMAKE_COMMAND} -E echo "Install what is missing, and configure again."
        COMMAND ${CMAKE_COMMAND} -E false
        VERBATIM)
    return()
endif()

foreach(theLibrary zoOS zoLog zo zoltTools UPnPStack UPnPUtilities)
    get_target_property(theLibraryHeaders ${theLibrary} HEADER_SET)
    list(APPEND theHeaders ${theLibraryHeaders})
endforeach()
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
    COMMAND ${UPNP_DOXYGEN} ${PROJECT_BINARY_DIR}/Doxyfile
    COMMENT "Manual: ${theManualDirectory}/index.html"
    VERBATIM)
