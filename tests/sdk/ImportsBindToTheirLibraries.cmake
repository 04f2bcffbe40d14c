# Links a bundle that imports every name of TABLE and reads from it which library each is bound to.
cmake_policy(VERSION 3.25)
file(STRINGS ${TABLE} rows REGEX "^[^#]")
if(COMPILE MATCHES "arm64-apple")
    list(FILTER rows EXCLUDE REGEX " x86_64$")
endif()
list(TRANSFORM rows REPLACE " x86_64$" "")
list(LENGTH rows count)
set(source ".section __DATA,__data\n")
foreach(row IN LISTS rows)
    string(REGEX REPLACE " .*" "" name "${row}")
    string(APPEND source ".quad ${name}\n")
endforeach()
file(MAKE_DIRECTORY ${OUTPUT})
file(WRITE ${OUTPUT}/everything.s "${source}")
execute_process(
    COMMAND ${COMPILE} -Wno-unused-command-line-argument -fuse-ld=lld -bundle everything.s
            -o everything.bundle -framework Foundation -framework CoreFoundation
            -framework CoreServices -framework CoreText -lobjc
    WORKING_DIRECTORY ${OUTPUT} COMMAND_ERROR_IS_FATAL ANY)
execute_process(COMMAND ${NM} -m --undefined-only everything.bundle
    WORKING_DIRECTORY ${OUTPUT} OUTPUT_VARIABLE imports COMMAND_ERROR_IS_FATAL ANY)
set(wrong "")
foreach(row IN LISTS rows)
    string(FIND "${imports}" "external ${row}\n" at)
    if(at EQUAL -1)
        string(APPEND wrong "not as expected: ${row}\n")
    endif()
endforeach()
if(wrong OR count LESS 100)
    message(FATAL_ERROR "${wrong}of ${count} imports; the bundle has\n${imports}")
endif()
