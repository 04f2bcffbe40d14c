# The plug-in's target; the folders of the plug-in add their sources to it.
add_library(NSProcessInfoZKT MODULE)
target_include_directories(NSProcessInfoZKT PRIVATE ${CMAKE_SOURCE_DIR})
target_link_libraries(NSProcessInfoZKT PRIVATE project_warnings)
target_compile_options(NSProcessInfoZKT PRIVATE
    -fvisibility=hidden -fvisibility-inlines-hidden -Wunguarded-availability)
set_target_properties(NSProcessInfoZKT PROPERTIES PREFIX "")

if(APPLE)
    include(MacBundle)
else()
    # Compiled against the same Foundation declarations as the bundle, so that both images expect
    # macOS's types. The names of Core Foundation and its family stay undefined: whoever loads the
    # object supplies them.
    include(GNUstep)
    set(sdk ${CMAKE_SOURCE_DIR}/macos/sdk)
    target_compile_options(NSProcessInfoZKT PRIVATE
        "$<$<COMPILE_LANGUAGE:OBJC,OBJCXX>:${GNU_OBJC_FLAGS}>"
        -isystem ${sdk}/usr/include -iframework ${sdk}/System/Library/Frameworks)
    target_link_libraries(NSProcessInfoZKT PRIVATE ${GNUSTEP_BASE_LIBRARY} ${LIBOBJC})
    target_link_options(NSProcessInfoZKT PRIVATE
        -Wl,--version-script=${CMAKE_SOURCE_DIR}/bundle/linux.map)
    if(COVERAGE)
        # Counters lie in the file itself then, and are kept however a process ends.
        target_compile_options(NSProcessInfoZKT PRIVATE
            -fprofile-instr-generate -fcoverage-mapping -mllvm -runtime-counter-relocation)
        target_link_options(NSProcessInfoZKT PRIVATE -fprofile-instr-generate)
    endif()
    set_target_properties(NSProcessInfoZKT PROPERTIES
        LINK_DEPENDS ${CMAKE_SOURCE_DIR}/bundle/linux.map)
endif()
