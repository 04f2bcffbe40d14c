# On a Mac: Foundation's neighbours that are part of macOS, headers of Homebrew's, and libraries made
# from the sources that './dev' has Homebrew fetch into build/sources.
find_package(CLI11 REQUIRED)
find_package(nlohmann_json REQUIRED)
find_path(ICU_HEADERS unicode/ucasemap.h REQUIRED)
find_library(ICUCORE icucore REQUIRED)
library_icu(${ICUCORE} ${ICU_HEADERS})
find_path(FFI_HEADERS ffi.h PATH_SUFFIXES ffi REQUIRED)
find_library(FFI ffi REQUIRED)
library(ffi_of_macos ${FFI} ${FFI_HEADERS})
set(LIBFFI ffi_of_macos)
find_library(LIBEDIT edit REQUIRED)

set(sources ${CMAKE_SOURCE_DIR}/build/sources)
set(md4c ${sources}/md4c/src)
add_library(md4c_html STATIC EXCLUDE_FROM_ALL
    ${md4c}/entity.c ${md4c}/md4c.c ${md4c}/md4c-html.c)
target_include_directories(md4c_html SYSTEM PUBLIC ${md4c})
set(LIBMD4C_HTML md4c_html)

set(BENCHMARK_ENABLE_TESTING OFF)
set(BENCHMARK_ENABLE_INSTALL OFF)
add_subdirectory(${sources}/google-benchmark ${CMAKE_BINARY_DIR}/benchmark EXCLUDE_FROM_ALL SYSTEM)
add_subdirectory(${sources}/googletest ${CMAKE_BINARY_DIR}/googletest EXCLUDE_FROM_ALL SYSTEM)
