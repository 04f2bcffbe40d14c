# Compiles every header of SDK by itself as LANGUAGE with COMPILE (compiler and flags).
cmake_policy(VERSION 3.25)
file(GLOB_RECURSE headers RELATIVE ${SDK} ${SDK}/*.h)
if(NOT headers)
    message(FATAL_ERROR "${SDK} has no headers.")
endif()
set(failed "")
foreach(header IN LISTS headers)
    string(REGEX REPLACE "^usr/include/" "" include ${header})
    string(REGEX REPLACE "^.*/(.*)[.]framework/Headers/" "\\1/" include ${include})
    # The headers of single Foundation classes are for Objective-C alone.
    if(LANGUAGE STREQUAL "c++" AND
       include MATCHES "^Foundation/" AND NOT include MATCHES "/(Foundation|NSObjCRuntime|NSRange)[.]h")
        continue()
    endif()
    execute_process(
        COMMAND ${COMPILE} -fsyntax-only -x ${LANGUAGE} -include ${include} /dev/null
        RESULT_VARIABLE status ERROR_VARIABLE output)
    if(NOT status EQUAL 0 OR output)
        string(APPEND failed "<${include}>:\n${output}\n")
    endif()
endforeach()
if(failed)
    message(FATAL_ERROR "${failed}")
endif()
