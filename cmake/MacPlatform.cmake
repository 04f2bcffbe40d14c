# The reference host's platform on a Mac: Apple's frameworks, under the names that stand for loader
# and stand-in elsewhere, and Homebrew's libraries.
#
# Cross-built on Linux nothing of this can run; it compiles and links, against macos/sdk, the headers
# of Debian's libraries and import stubs for their binaries, and GoogleTest from its sources.
# What is not part of macOS is made of headers, or from sources.
foreach(library macos_standin macos_loader gnustep_base llvm_object)
    add_library(${library} INTERFACE)
endforeach()
target_link_libraries(macos_standin INTERFACE
    "-framework Foundation" "-framework CoreFoundation" "-framework CoreServices" objc)
target_include_directories(macos_standin INTERFACE ${CMAKE_SOURCE_DIR}/macos)
target_compile_options(gnustep_base INTERFACE
    "$<$<COMPILE_LANGUAGE:OBJC,OBJCXX>:-fobjc-exceptions>")

# library(NAME LIBRARY [HEADERS]): a target for a library's file and the folder of its headers.
function(library name file)
    add_library(${name} INTERFACE)
    target_link_libraries(${name} INTERFACE ${file})
    target_include_directories(${name} SYSTEM INTERFACE ${ARGN})
endfunction()

# The ICU that is part of macOS has its functions' names without a version, and C's alone.
function(library_icu file headers)
    library(icu_of_macos ${file} ${headers})
    target_compile_definitions(icu_of_macos INTERFACE U_DISABLE_RENAMING=1 U_SHOW_CPLUSPLUS_API=0)
    add_library(ICU::uc ALIAS icu_of_macos)
endfunction()

set(INSTALL_GTEST OFF)
if(CMAKE_HOST_SYSTEM_NAME STREQUAL "Darwin")
    include(Homebrew)
    return()
endif()

# Debian's headers lie among those of its C library, which must stay out of sight.
set(headers ${CMAKE_BINARY_DIR}/headers)
file(MAKE_DIRECTORY ${headers})
foreach(name CLI benchmark editline md4c-html.h md4c.h nlohmann unicode ffi.h ffitarget.h)
    file(GLOB found /usr/include/${name} /usr/include/*-linux-gnu/${name})
    if(NOT found)
        message(FATAL_ERROR "There is no /usr/include/${name}; './dev build' installs what is missing.")
    endif()
    list(GET found 0 found)
    file(CREATE_LINK ${found} ${headers}/${name} SYMBOLIC)
endforeach()
foreach(library CLI11::CLI11 nlohmann_json::nlohmann_json)
    add_library(${library} INTERFACE IMPORTED GLOBAL)
    target_include_directories(${library} INTERFACE ${headers})
endforeach()

set(stubs ${CMAKE_SOURCE_DIR}/macos/host-libraries)
# macos/sdk's stubs say what the plug-in may import, these what the host needs beyond that.
target_link_libraries(macos_standin INTERFACE
    ${stubs}/Foundation.tbd ${stubs}/CoreFoundation.tbd ${stubs}/libobjc.tbd)
# import_stub(NAME INSTALL_NAME FILE PATTERN): what a library of Debian's exports, as that of a Mac's
# library.
function(import_stub name install_name file pattern)
    execute_process(COMMAND ${CMAKE_NM} ${ARGN} --extern-only --defined-only --format=just-symbols ${file}
                    OUTPUT_VARIABLE output ERROR_QUIET COMMAND_ERROR_IS_FATAL ANY)
    string(REGEX MATCHALL "${pattern}" symbols "${output}")
    list(REMOVE_DUPLICATES symbols)
    list(TRANSFORM symbols PREPEND "_")
    list(JOIN symbols ", " symbols)
    file(CONFIGURE OUTPUT ${CMAKE_BINARY_DIR}/${name}.tbd @ONLY CONTENT "--- !tapi-tbd
tbd-version:     4
targets:         [ @CMAKE_OSX_ARCHITECTURES@-macos ]
install-name:    '@install_name@'
exports:
  - targets:         [ @CMAKE_OSX_ARCHITECTURES@-macos ]
    symbols:         [ @symbols@ ]
...
")
endfunction()
import_stub(libc++ /usr/lib/libc++.1.dylib ${CLANG_BIN}/../lib/libc++.a "_Z[^\n]+")
import_stub(libc++abi /usr/lib/libc++abi.dylib ${CLANG_BIN}/../lib/libc++abi.a
    "(_Z|__cxa_|__gxx_)[^\n]+")
link_libraries(${CMAKE_BINARY_DIR}/libc++.tbd ${CMAKE_BINARY_DIR}/libc++abi.tbd)
set(LIBFFI ${stubs}/libffi.tbd)
set(LIBEDIT ${stubs}/libedit.tbd)
set(LIBMD4C_HTML ${stubs}/libmd4c-html.tbd)
library_icu(${stubs}/libicucore.tbd ${headers})
file(GLOB libbenchmark /usr/lib/*-linux-gnu/libbenchmark.so)
list(GET libbenchmark 0 libbenchmark)
import_stub(libbenchmark @rpath/libbenchmark.1.dylib ${libbenchmark}
    "_Z[^\n]*9benchmark[^\n]+" --dynamic)
library(google_benchmark ${CMAKE_BINARY_DIR}/libbenchmark.tbd ${headers})
add_library(benchmark::benchmark ALIAS google_benchmark)
add_subdirectory(/usr/src/googletest ${CMAKE_BINARY_DIR}/googletest EXCLUDE_FROM_ALL SYSTEM)
