# Builds the libraries on this platform instead of the project's own: -DUPNP_PLATFORM=.../Examples/Platform
# -DUPNP_PLATFORM_LACKS=all. Its headers are in front; the rest of the base libraries is compiled along, against them.

set(thePlatform ${CMAKE_CURRENT_LIST_DIR})

# upnp_replace(LIBRARY FOLDER PATTERN...): sources of the library are left out, and those of the platform's folder added.
function(upnp_replace aLibrary aFolder)
    foreach(thePattern ${ARGN})
        file(GLOB_RECURSE theReplaced ${theRoot}/${thePattern})
        set_source_files_properties(${theReplaced} PROPERTIES HEADER_FILE_ONLY ON)
    endforeach()
    file(GLOB theSources CONFIGURE_DEPENDS ${thePlatform}/${aFolder}/*.cpp)
    target_sources(${aLibrary} PRIVATE ${theSources})
endfunction()

upnp_replace(zoltTools zoltTools zoltTools/zoltTools/zoArray.cpp zoltTools/zoltTools/zoBuffer.cpp
    zoltTools/zoltTools/zoCustomHashTable.cpp zoltTools/zoltTools/zoPackedData*.cpp)
upnp_replace(UPnPStack UPnP/Stack UPnP/Stack/ILibXML.cpp UPnP/Stack/XML/*.cpp)
upnp_use_fallbacks(zoltTools zoBuffer_Reserve)
upnp_use_fallbacks(UPnPStack zoBuffer_Reserve)
foreach(theLibrary zoltTools UPnPStack UPnPUtilities)
    target_include_directories(${theLibrary} BEFORE PUBLIC $<BUILD_INTERFACE:${thePlatform}>)
endforeach()

# This platform has none of the functions that a device may lack. The other headers are copied without them, and the
# product sees the copies.
file(GLOB theHeaders ${theRoot}/zoLog/zoLog/*.h ${theRoot}/zoltTools/zoltTools/*.h)
foreach(theHeader ${theHeaders})
    file(READ ${theHeader} theText)
    set(theStrippedText "${theText}")
    foreach(theFunction ${theFunctionsWithFallback})
        string(REGEX REPLACE "\n[A-Z]+_API [^;]*[ *]${theFunction}\\([^;]*;" "" theStrippedText "${theStrippedText}")
    endforeach()
    string(REGEX REPLACE "^.*/([^/]+/[^/]+)$" "\\1" theInclude ${theHeader})
    if(NOT theStrippedText STREQUAL theText AND NOT EXISTS ${thePlatform}/${theInclude})
        file(CONFIGURE OUTPUT ${PROJECT_BINARY_DIR}/PlatformHeaders/${theInclude} CONTENT "${theStrippedText}" @ONLY)
        set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${theHeader})
    endif()
endforeach()
target_include_directories(UPnPUtilities BEFORE PRIVATE ${PROJECT_BINARY_DIR}/PlatformHeaders)
