# What the audits of both images share.
cmake_policy(VERSION 3.25)

# Runs one of LLVM's tools; its output goes to the variable.
function(output_of variable tool)
    execute_process(COMMAND ${TOOLS}/${tool} ${ARGN} OUTPUT_VARIABLE output
                    COMMAND_ERROR_IS_FATAL ANY)
    set(${variable} "${output}" PARENT_SCOPE)
endfunction()

# Lines of a text, as a list.
function(lines_of variable text)
    string(REPLACE ";" "," text "${text}")
    string(REGEX REPLACE "\n+" ";" lines "${text}")
    list(REMOVE_ITEM lines "")
    set(${variable} "${lines}" PARENT_SCOPE)
endfunction()

function(expect_equal what found wanted)
    if(NOT found STREQUAL wanted)
        message(SEND_ERROR "${what}: found '${found}', wanted '${wanted}'")
    endif()
endfunction()

function(expect_match what text pattern)
    if(NOT text MATCHES "${pattern}")
        message(SEND_ERROR "${what}: nothing matches '${pattern}' in\n${text}")
    endif()
endfunction()
