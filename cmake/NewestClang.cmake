# The newest clang installed, as an absolute path in CLANG_C and CLANG_CXX, its version in
# CLANG_VERSION. Its tools (lld, llvm-ar, ...) are taken from the same installation, so that the
# bitcode and unwind formats agree.
if(CLANG_CXX)
    return()
endif()
file(GLOB candidates /usr/lib/llvm-*/bin/clang++)
if(candidates)
    list(SORT candidates COMPARE NATURAL ORDER DESCENDING)
    list(GET candidates 0 CLANG_CXX)
else()
    find_program(CLANG_CXX clang++ NO_CACHE REQUIRED)
    file(REAL_PATH ${CLANG_CXX} CLANG_CXX)
endif()
get_filename_component(CLANG_BIN ${CLANG_CXX} DIRECTORY)
set(CLANG_C ${CLANG_BIN}/clang)
execute_process(COMMAND ${CLANG_C} -dumpversion OUTPUT_VARIABLE CLANG_VERSION
                OUTPUT_STRIP_TRAILING_WHITESPACE)
# Older versions of lld write broken unwind tables for Mach-O.
if(CLANG_VERSION VERSION_LESS 16)
    message(FATAL_ERROR "clang 16 or newer is needed; the newest found is ${CLANG_VERSION} "
                        "(${CLANG_CXX}). './dev build' installs one.")
endif()
