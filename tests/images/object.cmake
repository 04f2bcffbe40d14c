# The Linux object: one export; macOS's own interfaces left to whoever loads it.
include(${CMAKE_CURRENT_LIST_DIR}/Audit.cmake)

output_of(exports llvm-nm -D --defined-only --format=just-symbols ${OBJECT})
lines_of(exports "${exports}")
expect_equal("exports" "${exports}" "REALPluginMain")

output_of(undefined llvm-nm -D --undefined-only ${OBJECT})
foreach(name CFDictionaryGetValue CFDictionarySetValue CFDictionaryRemoveValue CFStringGetCString
        CFStringGetLength)
    expect_match("imports" "${undefined}" " U ${name}\n")
endforeach()
expect_match("imports" "${undefined}" " w NSProcessInfoThermalStateDidChangeNotification\n")

output_of(dynamic llvm-readelf -d ${OBJECT})
if(dynamic MATCHES "NEEDED[^\n]*standin")
    message(SEND_ERROR "the object names the stand-in as a library of its own:\n${dynamic}")
endif()
