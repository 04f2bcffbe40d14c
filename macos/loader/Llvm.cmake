# llvm_object: LLVM's reader of object files, linked statically: a program that loads an image starts
# in milliseconds, while the shared libLLVM alone takes tens of them and 130 MB.
#
# The compiler's own installation says what it has. For another processor the same version's archives
# lie in the same place of the target's file system.
execute_process(COMMAND ${CLANG_BIN}/llvm-config --link-static --libfiles object support symbolize
                OUTPUT_VARIABLE llvm_archives OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
execute_process(COMMAND ${CLANG_BIN}/llvm-config --includedir
                OUTPUT_VARIABLE llvm_headers OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
separate_arguments(llvm_archives UNIX_COMMAND "${llvm_archives}")
list(TRANSFORM llvm_archives PREPEND "${CMAKE_SYSROOT}")
list(GET llvm_archives 0 first)
if(NOT EXISTS ${first})
    message(FATAL_ERROR "There is no ${first} (package llvm-NN-dev).")
endif()

add_library(llvm_object INTERFACE)
# Behind libstdc++'s own headers, which it must not hide.
target_compile_options(llvm_object INTERFACE "SHELL:-idirafter \"${CMAKE_SYSROOT}${llvm_headers}\"")
target_link_libraries(llvm_object INTERFACE ${llvm_archives} ${CMAKE_DL_LIBS})
# Reading debug information may take these, whose packages for developers may be missing; the
# libraries themselves came with LLVM.
find_library(ZSTD NAMES zstd libzstd.so.1 REQUIRED)
find_library(ZLIB NAMES z libz.so.1 REQUIRED)
target_link_libraries(llvm_object INTERFACE ${ZSTD} ${ZLIB})
# A program exports its symbols for the images that it loads. LLVM's are not among them, so that
# what is not used of it can be left out.
list(TRANSFORM llvm_archives REPLACE ".*/" "")
list(JOIN llvm_archives ":" llvm_archives)
target_link_options(llvm_object INTERFACE
    LINKER:--as-needed LINKER:--gc-sections LINKER:--exclude-libs=${llvm_archives})
