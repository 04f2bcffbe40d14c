# The bundle that ships: one export; only imports that macOS has, each bound to the library that
# exports it; the thermal-state notification weakly, and nothing else so.
include(${CMAKE_CURRENT_LIST_DIR}/Audit.cmake)
set(executable ${BUNDLE}/Contents/MacOS/NSProcessInfoZKT)

output_of(exports llvm-objdump --macho --exports-trie ${executable})
string(REGEX MATCHALL "0x[0-9A-F]+ +[^ \n]+" exported "${exports}")
list(TRANSFORM exported REPLACE "^0x[0-9A-F]+ +" "")
expect_equal("exports" "${exported}" "_REALPluginMain")

# The C library and the dynamic linker export these everywhere.
set(libSystem ___bzero ___stack_chk_fail ___stack_chk_guard __Unwind_Resume _calloc _dladdr _free _memcmp
    _memcpy
    _memset _pthread_self _snprintf _strcmp _strlen dyld_stub_binder)
file(STRINGS ${IMPORTS} allowed REGEX "^[^#]")
output_of(undefined llvm-nm -m --undefined-only ${executable})
lines_of(undefined "${undefined}")
set(weak "")
foreach(line IN LISTS undefined)
    if(NOT line MATCHES "(weak )?external ([^ ]+) \\(from ([^)]+)\\)")
        message(SEND_ERROR "an import without a library: ${line}")
        continue()
    endif()
    set(name ${CMAKE_MATCH_2})
    set(library ${CMAKE_MATCH_3})
    if(CMAKE_MATCH_1)
        list(APPEND weak ${name})
    endif()
    if(library STREQUAL "libSystem" AND name IN_LIST libSystem)
        continue()
    endif()
    if(NOT "${name} (from ${library})" IN_LIST allowed)
        message(SEND_ERROR "macOS is not known to export ${name} from ${library}")
    endif()
endforeach()
list(LENGTH undefined count)
if(count LESS 20)
    message(SEND_ERROR "only ${count} imports were read")
endif()
expect_equal("weak imports" "${weak}" "_NSProcessInfoThermalStateDidChangeNotification")

output_of(header llvm-objdump --macho --private-headers ${executable})
expect_match("header" "${header}" "MH_MAGIC_64 +X86_64 +[A-Z0-9]+ +0x[0-9A-F]+ +BUNDLE ")
expect_match("deployment target" "${header}" "LC_VERSION_MIN_MACOSX\n +cmdsize 16\n +version 10\\.9\n")
expect_match("name space" "${header}" "TWOLEVEL")

file(READ ${BUNDLE}/Contents/Info.plist plist)
foreach(entry DevelopmentRegion:English Signature:[?][?][?][?] PackageType:BNDL
        Executable:NSProcessInfoZKT)
    string(REPLACE ":" ";" entry ${entry})
    list(GET entry 0 key)
    list(GET entry 1 value)
    expect_match("Info.plist" "${plist}" "<key>CFBundle${key}</key>[ \n]*<string>${value}</string>")
endforeach()
