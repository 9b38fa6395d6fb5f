# How everything here is compiled: one interface target for all code, and a function for the shared libraries.

add_library(BuildOptions INTERFACE)
target_compile_options(BuildOptions INTERFACE
    -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wformat=2 -Wundef
    $<$<COMPILE_LANGUAGE:CXX>:-Wnon-virtual-dtor -Woverloaded-virtual>
    $<$<BOOL:${UPNP_WARNINGS_AS_ERRORS}>:-Werror>
    # Reported paths start at the project's root, wherever it lies.
    -fmacro-prefix-map=${PROJECT_SOURCE_DIR}/=)

if(UPNP_SANITIZERS)
    target_compile_options(BuildOptions INTERFACE
        -fsanitize=${UPNP_SANITIZERS} -fno-sanitize-recover=all -fno-omit-frame-pointer -O1)
    target_link_options(BuildOptions INTERFACE -fsanitize=${UPNP_SANITIZERS})
endif()
if(UPNP_FUZZER)
    target_compile_options(BuildOptions INTERFACE -fsanitize=fuzzer-no-link)
endif()

# upnp_add_library(NAME ROOT DIRECTORY [LIBRARIES...]): a shared library made of all sources of DIRECTORY and of the
# folders in it. Programs find its headers under the include root ROOT; those in folders of DIRECTORY are private.
function(upnp_add_library aName aRoot aDirectory)
    file(GLOB_RECURSE theSources CONFIGURE_DEPENDS ${aDirectory}/*.cpp ${aDirectory}/*.h)
    add_library(${aName} SHARED ${theSources})
    target_include_directories(${aName}
        PUBLIC $<BUILD_INTERFACE:${aRoot}> # installed: CMake/Install.cmake
        PRIVATE ${PROJECT_SOURCE_DIR}/Libs/Internal) # for <Shared/...>
    target_link_libraries(${aName} PUBLIC ${ARGN} PRIVATE BuildOptions)
    target_compile_options(${aName} PRIVATE -fno-exceptions -fno-rtti
        -fno-semantic-interposition -fno-plt) # calls between the libraries are many and short
    # Nothing is thrown through them, so as shipped they go without the tables for it, and without padding to pages.
    target_compile_options(${aName} PRIVATE
        $<$<CONFIG:Release>:-fno-asynchronous-unwind-tables;-fno-unwind-tables>)
    target_link_options(${aName} PRIVATE $<$<CONFIG:Release>:LINKER:-z,noseparate-code>)
    set_target_properties(${aName} PROPERTIES
        CXX_VISIBILITY_PRESET hidden
        VISIBILITY_INLINES_HIDDEN ON
        VERSION ${PROJECT_VERSION}
        SOVERSION ${PROJECT_VERSION_MAJOR})
    if(NOT UPNP_SANITIZERS)
        target_link_options(${aName} PRIVATE -Wl,--no-undefined -Wl,-z,relro,-z,now)
    endif()
endfunction()
