# How everything here is compiled, and the libraries.
include(CheckPIESupported)
check_pie_supported()
if(NOT CMAKE_BUILD_TYPE STREQUAL "Debug")
    include(CheckIPOSupported)
    check_ipo_supported(RESULT UPNP_CAN_OPTIMISE_LINKS OUTPUT theReason LANGUAGES CXX)
endif()

# On x86, gcc copies and sets to zero what has some 100 bytes by instructions that take 30 cycles to begin (rep movs, rep
# stos).
include(CheckCXXCompilerFlag)
set(UPNP_NO_REP -mmemset-strategy=libcall:-1:noalign -mmemcpy-strategy=libcall:-1:noalign)
string(REPLACE ";" " " theFlags "${UPNP_NO_REP}")
check_cxx_compiler_flag("${theFlags}" UPNP_CAN_AVOID_REP)

# While the version is 0.x, the interface may change with the minor version.
if(PROJECT_VERSION_MAJOR EQUAL 0)
    set(UPNP_INTERFACE_VERSION 0.${PROJECT_VERSION_MINOR})
else()
    set(UPNP_INTERFACE_VERSION ${PROJECT_VERSION_MAJOR})
endif()

# Of the compiler's flags, those that a user gave are not overruled: a level of optimisation, a way of hardening.
set(UPNP_USER_FLAGS "${CMAKE_CXX_FLAGS} ${CMAKE_CXX_FLAGS_RELEASE}")
string(REPLACE "-O3 -DNDEBUG" "" UPNP_USER_FLAGS "${UPNP_USER_FLAGS}") # CMake's own

# upnp_set_options(TARGET): language, warnings, hardening, and paths that start at the project's root, wherever it lies.
function(upnp_set_options aTarget)
    target_compile_features(${aTarget} PRIVATE cxx_std_17)
    set_target_properties(${aTarget} PROPERTIES
        C_STANDARD 11
        C_EXTENSIONS OFF
        CXX_EXTENSIONS OFF
        POSITION_INDEPENDENT_CODE ON)
    target_compile_options(${aTarget} PRIVATE
        -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wformat=2 -Wundef
        $<$<COMPILE_LANGUAGE:CXX>:-Wnon-virtual-dtor;-Woverloaded-virtual>
        $<$<BOOL:${UPNP_WARNINGS_AS_ERRORS}>:-Werror>
        # Debuggers find the sources by their full path.
        $<IF:$<CONFIG:Debug>,-fmacro-prefix-map,-ffile-prefix-map>=${PROJECT_SOURCE_DIR}/=)
    if(UPNP_FUZZER)
        target_compile_options(${aTarget} PRIVATE -fsanitize=fuzzer-no-link)
    endif()
    if(UPNP_SANITIZERS)
        target_compile_options(${aTarget} PRIVATE
            -fsanitize=${UPNP_SANITIZERS} -fno-sanitize-recover=all -fno-omit-frame-pointer -O1)
        target_link_options(${aTarget} PRIVATE -fsanitize=${UPNP_SANITIZERS})
        return()
    endif()
    target_link_options(${aTarget} PRIVATE LINKER:-z,relro,-z,now)
    if(NOT UPNP_USER_FLAGS MATCHES "-f(no-)?stack-protector")
        target_compile_options(${aTarget} PRIVATE -fstack-protector-strong)
    endif()
    if(NOT UPNP_USER_FLAGS MATCHES "_FORTIFY_SOURCE")
        target_compile_options(${aTarget} PRIVATE 
            $<$<CONFIG:Release,RelWithDebInfo,MinSizeRel>:-U_FORTIFY_SOURCE;-D_FORTIFY_SOURCE=2>)
    endif()
endfunction()

# upnp_add_library(NAME ROOT FOLDER... [LIBRARIES NAME...]): the library UPnPUtilities::NAME, made of all sources of the
# folders and of the folders in them. Programs find its headers under the include root ROOT; those in folders of the
# folders are private.
function(upnp_add_library aName aRoot)
    cmake_parse_arguments(PARSE_ARGV 2 the "" "" LIBRARIES)
    list(TRANSFORM the_UNPARSED_ARGUMENTS PREPEND ${aRoot}/ OUTPUT_VARIABLE theFolders)
    list(TRANSFORM theFolders APPEND /*.cpp OUTPUT_VARIABLE theSourcePatterns)
    list(TRANSFORM theFolders APPEND /*.h OUTPUT_VARIABLE theHeaderPatterns)
    file(GLOB_RECURSE theSources CONFIGURE_DEPENDS ${theSourcePatterns})
    file(GLOB theHeaders CONFIGURE_DEPENDS ${theHeaderPatterns})

    add_library(${aName} ${theSources})
    add_library(UPnPUtilities::${aName} ALIAS ${aName})
    upnp_set_options(${aName})
    target_compile_features(${aName} PUBLIC cxx_std_17)
    target_sources(${aName} PUBLIC FILE_SET HEADERS BASE_DIRS ${aRoot} FILES ${theHeaders})
    target_include_directories(${aName} PRIVATE ${PROJECT_SOURCE_DIR}/Libs/Internal) # for <Shared/...>
    target_link_libraries(${aName} PUBLIC ${the_LIBRARIES})
    target_compile_options(${aName} PRIVATE -fno-exceptions -fno-rtti
        -fasynchronous-unwind-tables # a crash report tells the way through the library
        -fno-semantic-interposition -fno-plt # calls between the libraries are many and short
        $<$<AND:$<CONFIG:Release>,$<BOOL:${UPNP_CAN_AVOID_REP}>>:${UPNP_NO_REP}>)
    set_target_properties(${aName} PROPERTIES
        CXX_VISIBILITY_PRESET hidden
        VISIBILITY_INLINES_HIDDEN ON
        VERSION ${PROJECT_VERSION}
        SOVERSION ${UPNP_INTERFACE_VERSION})
    get_target_property(theType ${aName} TYPE)
    if(theType STREQUAL SHARED_LIBRARY AND NOT UPNP_SANITIZERS)
        target_link_options(${aName} PRIVATE LINKER:--no-undefined)
        upnp_add_symbol_versions(${aName})
        # Calls between sources cost nothing then. Archives stay as every compiler and linker understands them.
        if(UPNP_CAN_OPTIMISE_LINKS AND NOT UPNP_USER_FLAGS MATCHES "-f(no-)?lto")
            set_target_properties(${aName} PROPERTIES INTERPROCEDURAL_OPTIMIZATION_RELEASE ON)
            if(CMAKE_CXX_COMPILER_ID STREQUAL GNU) # in parts it would have small functions several times
                target_link_options(${aName} PRIVATE $<$<CONFIG:Release>:-flto-partition=one>)
            endif()
        endif()
    endif()
endfunction()

# upnp_add_symbol_versions(LIBRARY): its exported symbols are those that Libs/exports lists, under the version of the
# interface. A debug build exports what the code says, so that a new function can be tried before it is listed.
function(upnp_add_symbol_versions aName)
    option(UPNP_SYMBOL_VERSIONS "Export what Libs/exports lists, with versions" ON)
    set(theList ${PROJECT_SOURCE_DIR}/Libs/exports/lib${aName}.txt)
    set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${theList})
    file(STRINGS ${theList} theLines)
    string(TOUPPER ${aName}_${UPNP_INTERFACE_VERSION} theVersion)
    set(theScript "${theVersion} {\nglobal:\n")
    foreach(theLine ${theLines})
        string(REGEX REPLACE "^. ([^(]*).*$" "\\1" theName "${theLine}")
        if(theLine MATCHES "\\(") # a C++ function; its arguments are written otherwise on 32 bits
            string(REGEX REPLACE "[^A-Za-z0-9_:]" "?" theName "${theName}")
            string(APPEND theScript "extern \"C++\" { ${theName}*; };\n")
        else()
            string(APPEND theScript "${theName};\n")
        endif()
    endforeach()
    string(APPEND theScript "local:\n*;\n};\n")
    set(theFile ${CMAKE_CURRENT_BINARY_DIR}/${aName}.map)
    file(CONFIGURE OUTPUT ${theFile} CONTENT "${theScript}")
    if(UPNP_SYMBOL_VERSIONS)
        target_link_options(${aName} PRIVATE $<$<NOT:$<CONFIG:Debug>>:LINKER:--version-script,${theFile}>)
        set_property(TARGET ${aName} APPEND PROPERTY LINK_DEPENDS ${theFile})
    endif()
endfunction()
