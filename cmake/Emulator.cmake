# What is cross-built is run through an emulator: BUILD/emulate PROGRAM ARGUMENTS..., which
# EMULATE names; empty where programs run by themselves.
set(EMULATE "")
if(CMAKE_CROSSCOMPILING AND CMAKE_CROSSCOMPILING_EMULATOR)
    set(EMULATE ${CMAKE_BINARY_DIR}/emulate)
    list(JOIN CMAKE_CROSSCOMPILING_EMULATOR "' '" emulator)
    file(CONFIGURE OUTPUT ${EMULATE} CONTENT "#!/bin/sh\nexec '@emulator@' \"$@\"\n" @ONLY)
    file(CHMOD ${EMULATE} PERMISSIONS
        OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
    set(CMAKE_CROSSCOMPILING_EMULATOR ${EMULATE})
endif()
