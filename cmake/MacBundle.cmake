# One slice of the Mach-O bundle, as it ships: without debug entries, with its licence and instructions inside,
# signed ad hoc. Its debug information lies beside it in NSProcessInfoZKT.bundle.dSYM.
# The same sources, tools and SDK give the same bytes, wherever the checkout is.
find_package(Python3 REQUIRED COMPONENTS Interpreter)

# Of the bundle as a whole, whichever slice this is: both have the same property list.
set(LEAST_MACOS 10.9)
set(plist ${CMAKE_BINARY_DIR}/generated/Info.plist)
configure_file(${CMAKE_SOURCE_DIR}/bundle/Info.plist.in ${plist} @ONLY)
set_target_properties(NSProcessInfoZKT PROPERTIES
    BUNDLE ON
    BUNDLE_EXTENSION bundle
    MACOSX_BUNDLE_INFO_PLIST ${plist})

target_compile_options(NSProcessInfoZKT PRIVATE
    "$<$<COMPILE_LANGUAGE:OBJC,OBJCXX>:-fobjc-exceptions>"
    # Messages stay messages; from macOS 10.15 on the compiler would call the runtime for some.
    "$<$<COMPILE_LANGUAGE:OBJC,OBJCXX>:-fno-objc-convert-messages-to-runtime-calls>"
    # No path of this machine: those of the checkout and of the SDK become relative.
    -ffile-compilation-dir=.
    -ffile-prefix-map=${CMAKE_SOURCE_DIR}/=
    -ffile-prefix-map=${CMAKE_OSX_SYSROOT}/=sdk/)
target_link_options(NSProcessInfoZKT PRIVATE
    -Wl,-exported_symbol,_REALPluginMain
    -Wl,-no_adhoc_codesign # below, with everything else in the bundle
    # Identifier and version can be read from the executable alone, too.
    -Wl,-sectcreate,__TEXT,__info_plist,${plist}
    -Wl,-oso_prefix,${CMAKE_BINARY_DIR}/)
if(CMAKE_OSX_ARCHITECTURES STREQUAL "arm64")
    # Objects without code have a label in their place for code. For labels lld notes that nothing is known
    # of unwinding them, here at the address of the next object's first function, which exceptions could
    # not leave then.
    target_link_options(NSProcessInfoZKT PRIVATE -Wl,-dead_strip)
endif()
# No image is built for an older system than its least: the project's own SDK is.
file(READ ${CMAKE_OSX_SYSROOT}/SDKSettings.json settings)
string(JSON sdk_version GET "${settings}" Version)
if(sdk_version VERSION_LESS CMAKE_OSX_DEPLOYMENT_TARGET)
    target_link_options(NSProcessInfoZKT PRIVATE
        -Wl,-platform_version,macos,${CMAKE_OSX_DEPLOYMENT_TARGET},${CMAKE_OSX_DEPLOYMENT_TARGET})
endif()
target_link_libraries(NSProcessInfoZKT PRIVATE
    "-framework Foundation" "-framework CoreFoundation" "-framework CoreServices"
    "-framework CoreText" objc)

set(resources ${CMAKE_SOURCE_DIR}/INSTALL.txt ${CMAKE_SOURCE_DIR}/LICENSE)
if(CMAKE_HOST_SYSTEM_NAME STREQUAL "Darwin")
    set(dsymutil xcrun dsymutil)
    set(strip xcrun strip)
    set(sign codesign --force --sign -)
else()
    set(dsymutil ${CLANG_BIN}/dsymutil)
    set(strip ${CLANG_BIN}/llvm-strip)
    set(sign ${Python3_EXECUTABLE} ${CMAKE_SOURCE_DIR}/bundle/sign.py)
endif()
set(bundle $<TARGET_BUNDLE_DIR:NSProcessInfoZKT>)
set(executable $<TARGET_FILE:NSProcessInfoZKT>)
# In this order: the debug map leads dsymutil to the object files; what changes the file goes before
# the signature. Local symbols stay: tests and crash reports name functions by them.
add_custom_command(TARGET NSProcessInfoZKT POST_BUILD
    COMMAND ${CMAKE_COMMAND} -E rm -rf ${bundle}.dSYM
    COMMAND ${dsymutil} --oso-prepend-path ${CMAKE_BINARY_DIR} -o ${bundle}.dSYM ${executable}
    # Which is for linking debug information anew, and names this machine's folders.
    COMMAND ${CMAKE_COMMAND} -E rm -rf ${bundle}.dSYM/Contents/Resources/Relocations
    COMMAND ${strip} -S ${executable}
    COMMAND ${CMAKE_COMMAND} -E make_directory ${bundle}/Contents/Resources
    COMMAND ${CMAKE_COMMAND} -E copy ${resources} ${bundle}/Contents/Resources
    COMMAND ${sign} ${bundle}
    VERBATIM)
set_target_properties(NSProcessInfoZKT PROPERTIES
    LINK_DEPENDS "${plist};${resources};${CMAKE_SOURCE_DIR}/bundle/sign.py")
