# Platform functions that the device lacks, of those that have a fallback; "all" for all of them.
set(UPNP_PLATFORM_LACKS "" CACHE STRING "Platform functions to be replaced by the library's fallbacks")
set(theFallbacks ${theRoot}/UPnP/Utilities/Fallbacks/Fallbacks)
file(STRINGS ${theFallbacks}.h theFunctionsWithFallback REGEX "^#ifdef UPNP_LACKS_")
string(REPLACE "#ifdef UPNP_LACKS_" "" theFunctionsWithFallback "${theFunctionsWithFallback}")

# upnp_use_fallbacks(LIBRARY FUNCTION...): the library has these functions of its own.
function(upnp_use_fallbacks aLibrary)
    list(TRANSFORM ARGN PREPEND UPNP_LACKS_ OUTPUT_VARIABLE theDefinitions)
    target_sources(${aLibrary} PRIVATE ${theFallbacks}.cpp)
    target_compile_definitions(${aLibrary} PRIVATE ${theDefinitions})
    target_compile_options(${aLibrary} PRIVATE -include ${theFallbacks}.h)
endfunction()

set_source_files_properties(${theFallbacks}.cpp PROPERTIES HEADER_FILE_ONLY ON) # unless a library needs it
if(UPNP_PLATFORM_LACKS)
    string(REGEX REPLACE "^all$" "${theFunctionsWithFallback}" UPNP_PLATFORM_LACKS "${UPNP_PLATFORM_LACKS}")
    set_source_files_properties(${theFallbacks}.cpp PROPERTIES HEADER_FILE_ONLY OFF)
    upnp_use_fallbacks(UPnPUtilities ${UPNP_PLATFORM_LACKS})
endif()

# Another platform than the project's own, such as the one in Examples/Platform.
set(UPNP_PLATFORM "" CACHE PATH "Folder whose Platform.cmake replaces parts of the libraries below the product")
if(UPNP_PLATFORM)
    include(${UPNP_PLATFORM}/Platform.cmake)
endif()
