# What is cross-built is run through an emulator. EMULATOR: its words, one behind the other; empty where
# programs run by themselves. BUILD/emulate PROGRAM ARGUMENTS... is the same as a program.
set(EMULATOR "")
if(CMAKE_CROSSCOMPILING AND CMAKE_CROSSCOMPILING_EMULATOR)
    set(EMULATOR ${CMAKE_CROSSCOMPILING_EMULATOR})
    list(POP_FRONT EMULATOR program)
    find_program(EMULATOR_PROGRAM ${program} REQUIRED)
    list(PREPEND EMULATOR ${EMULATOR_PROGRAM})
    list(JOIN EMULATOR "' '" words)
    set(script ${CMAKE_BINARY_DIR}/emulate)
    # Other shells drop what has no shell's name from the environment.
    file(CONFIGURE OUTPUT ${script} CONTENT "#!/bin/bash\nexec '@words@' \"$@\"\n" @ONLY)
    file(CHMOD ${script} PERMISSIONS
        OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
endif()
