# What runs under AddressSanitizer and UndefinedBehaviorSanitizer. Where the whole build is for
# fuzzing (SANITIZE), everything is compiled so. Elsewhere sanitized_twin makes a second target of
# those whose memory is to be watched, and tests are compiled once for both.
option(SANITIZE "Build everything with AddressSanitizer and UndefinedBehaviorSanitizer" OFF)

# No recovery: what a sanitizer reports fails the test.
# Host and plug-in call each other by name, each through declarations of its own: a type that is
# named differently on the other side is no fault.
set(SANITIZERS -fsanitize=address,undefined -fno-sanitize=function)
# Reports name lines, and no more of debug information.
set(SANITIZE_CODE ${SANITIZERS} -fno-sanitize-recover=all -fno-omit-frame-pointer
    -gline-tables-only)
if(SANITIZE)
    add_compile_options(${SANITIZE_CODE})
    add_link_options(${SANITIZERS})
endif()

# For programs: link this.
add_library(sanitizer_options INTERFACE)
if(SANITIZE)
    target_sources(sanitizer_options INTERFACE ${CMAKE_CURRENT_LIST_DIR}/SanitizerOptions.cpp)
endif()

# Link one of these: what it says holds for the target and all that link it.
add_library(sanitized INTERFACE)
# A twin's source stands behind others, whose names it may use anew.
target_compile_options(sanitized INTERFACE -Wno-shadow)
target_link_options(sanitized INTERFACE ${SANITIZERS})
target_sources(sanitized INTERFACE
    $<$<STREQUAL:$<TARGET_PROPERTY:TYPE>,EXECUTABLE>:${CMAKE_CURRENT_LIST_DIR}/SanitizerOptions.cpp>)

# The names of targets with "_sanitized" behind those that have a twin.
function(sanitized_names result)
    set(names "")
    foreach(name IN LISTS ARGN)
        if(TARGET ${name}_sanitized)
            string(APPEND name _sanitized)
        endif()
        list(APPEND names ${name})
    endforeach()
    set(${result} ${names} PARENT_SCOPE)
endfunction()

# sanitized_twin(TARGET): TARGET_sanitized, of the same sources, settings and libraries (of which it
# takes the twins), compiled and linked under the sanitizers; its file has the same name in the
# folder "sanitized". To be called where TARGET is complete, in the folder that made it. Several
# sources are compiled as one, in half of the time: local names of a target's sources must differ,
# unless SKIP_UNITY_BUILD_INCLUSION is set for them.
function(sanitized_twin target)
    if(CMAKE_CROSSCOMPILING) # a sanitizer's runtime is there for this machine alone
        return()
    endif()
    get_target_property(type ${target} TYPE)
    string(REPLACE "_LIBRARY" "" kind ${type})
    set(twin ${target}_sanitized)
    get_target_property(sources ${target} SOURCES)
    if(type STREQUAL "EXECUTABLE")
        add_executable(${twin} ${sources})
    else()
        add_library(${twin} ${kind} ${sources})
    endif()
    foreach(property INCLUDE_DIRECTORIES INTERFACE_INCLUDE_DIRECTORIES COMPILE_OPTIONS
            COMPILE_DEFINITIONS LINK_OPTIONS PREFIX ENABLE_EXPORTS LINK_DEPENDS
            PRECOMPILE_HEADERS POSITION_INDEPENDENT_CODE)
        get_target_property(value ${target} ${property})
        if(NOT value STREQUAL "value-NOTFOUND")
            set_target_properties(${twin} PROPERTIES ${property} "${value}")
        endif()
    endforeach()
    foreach(property LINK_LIBRARIES INTERFACE_LINK_LIBRARIES PRECOMPILE_HEADERS_REUSE_FROM)
        get_target_property(libraries ${target} ${property})
        if(libraries)
            sanitized_names(libraries ${libraries})
            set_target_properties(${twin} PROPERTIES ${property} "${libraries}")
        endif()
    endforeach()
    target_link_libraries(${twin} PRIVATE sanitized)
    target_compile_options(${twin} PRIVATE ${SANITIZE_CODE})
    set_target_properties(${twin} PROPERTIES
        OUTPUT_NAME ${target}
        UNITY_BUILD ON UNITY_BUILD_BATCH_SIZE 8
        EXPORT_COMPILE_COMMANDS OFF # clang-tidy needs to see a source once
        RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/sanitized
        LIBRARY_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/sanitized
        ARCHIVE_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/sanitized)
endfunction()
