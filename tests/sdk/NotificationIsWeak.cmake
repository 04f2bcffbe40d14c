# Compiles SOURCE for both targets and asks the symbol tables how the notification is imported.
cmake_policy(VERSION 3.25)
set(name NSProcessInfoThermalStateDidChangeNotification)
file(MAKE_DIRECTORY ${OUTPUT})
execute_process(COMMAND ${COMPILE_MACOS} -O2 -c ${SOURCE} -o macos.o
    WORKING_DIRECTORY ${OUTPUT} COMMAND_ERROR_IS_FATAL ANY)
execute_process(COMMAND ${COMPILE_LINUX} -O2 -c ${SOURCE} -o linux.o
    WORKING_DIRECTORY ${OUTPUT} COMMAND_ERROR_IS_FATAL ANY)
execute_process(COMMAND ${NM} -m macos.o
    WORKING_DIRECTORY ${OUTPUT} OUTPUT_VARIABLE macos COMMAND_ERROR_IS_FATAL ANY)
execute_process(COMMAND ${NM} linux.o
    WORKING_DIRECTORY ${OUTPUT} OUTPUT_VARIABLE linux COMMAND_ERROR_IS_FATAL ANY)
if(NOT macos MATCHES "[(]undefined[)] weak external _${name}\n")
    message(FATAL_ERROR "Not a weak import of the Mach-O object:\n${macos}")
endif()
if(NOT linux MATCHES " w ${name}\n")
    message(FATAL_ERROR "Not a weak import of the ELF object:\n${linux}")
endif()
