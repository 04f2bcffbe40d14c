# gnustep_base: compile and link flags for Objective-C++ that uses GNUstep's own Foundation headers.
find_path(GNUSTEP_INCLUDE GNUstepBase/GSConfig.h PATH_SUFFIXES GNUstep REQUIRED)
find_library(GNUSTEP_BASE_LIBRARY gnustep-base REQUIRED)
# libobjc's headers and library live in GCC's own folder; its other headers must stay behind clang's.
# Where commands of our own call the compiler.
set(TARGET_FLAGS "")
if(CMAKE_CROSSCOMPILING)
    set(TARGET_FLAGS --target=${CMAKE_CXX_COMPILER_TARGET} --sysroot=${CMAKE_SYSROOT})
endif()
execute_process(COMMAND ${CMAKE_CXX_COMPILER} ${TARGET_FLAGS} -print-file-name=libobjc.so
                OUTPUT_VARIABLE LIBOBJC OUTPUT_STRIP_TRAILING_WHITESPACE)
if(NOT IS_ABSOLUTE "${LIBOBJC}")
    message(FATAL_ERROR "No libobjc.so in GCC's folder (package libobjc-NN-dev).")
endif()
get_filename_component(GCC_FOLDER ${LIBOBJC} DIRECTORY)

# The GNU runtime's code generation, which any Objective-C++ on Linux needs.
set(GNU_OBJC_FLAGS -fobjc-runtime=gcc -fobjc-exceptions -fexceptions
    -fconstant-string-class=NSConstantString)

add_library(gnustep_base INTERFACE)
target_compile_options(gnustep_base INTERFACE
    "$<$<COMPILE_LANGUAGE:OBJC,OBJCXX>:${GNU_OBJC_FLAGS}>"
    "SHELL:-isystem \"${GNUSTEP_INCLUDE}\"" "SHELL:-idirafter \"${GCC_FOLDER}/include\"")
target_compile_definitions(gnustep_base INTERFACE
    GNUSTEP GNUSTEP_BASE_LIBRARY=1 GNU_RUNTIME=1 _NATIVE_OBJC_EXCEPTIONS)
target_link_libraries(gnustep_base INTERFACE ${GNUSTEP_BASE_LIBRARY} ${LIBOBJC})
