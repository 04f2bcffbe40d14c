# The newest clang installed, as an absolute path in CLANG_C and CLANG_CXX, its version in
# CLANG_VERSION. Its tools (lld, llvm-ar, ...) are taken from the same installation, so that the
# bitcode and unwind formats agree.
# -DCLANG_CXX=PATH names another clang++.
file(GLOB candidates /usr/lib/llvm-*/bin/clang++)
if(CLANG_CXX)
    list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES CLANG_CXX)
elseif(candidates)
    list(SORT candidates COMPARE NATURAL ORDER DESCENDING)
    list(GET candidates 0 CLANG_CXX)
else()
    find_program(CLANG_CXX clang++ NO_CACHE REQUIRED)
    file(REAL_PATH ${CLANG_CXX} CLANG_CXX)
endif()
get_filename_component(CLANG_BIN ${CLANG_CXX} DIRECTORY)
set(CLANG_C ${CLANG_BIN}/clang)
if(NOT EXISTS ${CLANG_C})
    message(FATAL_ERROR "There is no clang beside ${CLANG_CXX}.")
endif()
if(CMAKE_CXX_COMPILER AND NOT CMAKE_CXX_COMPILER STREQUAL CLANG_CXX)
    message(FATAL_ERROR "This project is built with clang; to choose one, say -DCLANG_CXX=PATH "
                        "instead of -DCMAKE_CXX_COMPILER=${CMAKE_CXX_COMPILER}.")
endif()
execute_process(COMMAND ${CLANG_C} -dumpversion OUTPUT_VARIABLE CLANG_VERSION
                OUTPUT_STRIP_TRAILING_WHITESPACE)
# Older versions of lld write broken unwind tables for Mach-O.
if(CLANG_VERSION VERSION_LESS 16)
    message(FATAL_ERROR "clang 16 or newer is needed; the newest found is ${CLANG_VERSION} "
                        "(${CLANG_CXX}). './dev build' installs one.")
endif()
