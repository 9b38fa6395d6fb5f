# Builds the libraries on this platform instead of the project's own: -DUPNP_PLATFORM=.../Examples/Platform.
#
# This platform has none of the functions that a device may lack. Headers of the project's own that declare one are
# copied without the declaration, and the copies are in front of them when the product is compiled.

set(theHeaders zoLog/zoLog/Log.h zoltTools/zoltTools/zoDLNAProtocolInfo.h zoltTools/zoltTools/zoDLNAProtocolInfoList.h
    zoltTools/zoltTools/zoBuffer.h zoltTools/zoltTools/zoCustomHashTable.h zoltTools/zoltTools/zoPackedData.h UPnP/Stack/ILibXML.h)
foreach(theHeader ${theHeaders})
    file(READ ${theRoot}/${theHeader} theText)
    foreach(theFunction ${theFunctionsWithFallback})
        string(REGEX REPLACE "\n[A-Z]+_API [^;]*[ *]${theFunction}\\([^;]*;" "" theText "${theText}")
    endforeach()
    string(REGEX REPLACE "typedef struct zoPackedData_Value[^}]*}[^;]*;" "" theText "${theText}")
    string(REGEX REPLACE "^zo[A-Za-z]+/(.*)$" "\\1" theInclude ${theHeader})
    file(CONFIGURE OUTPUT ${PROJECT_BINARY_DIR}/PlatformHeaders/${theInclude} CONTENT "${theText}" @ONLY)
    set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${theRoot}/${theHeader})
endforeach()
target_include_directories(UPnPUtilities BEFORE PRIVATE ${PROJECT_BINARY_DIR}/PlatformHeaders)
