# llvm_object: LLVM's reader of object files, linked statically: a program that loads an image starts
# in milliseconds, while the shared libLLVM alone takes tens of them and 130 MB.
file(GLOB llvm_folders /usr/lib/llvm-*/lib/cmake/llvm)
list(SORT llvm_folders COMPARE NATURAL ORDER DESCENDING)
# Its own look for optional packages is of no interest here.
set(CMAKE_MESSAGE_LOG_LEVEL WARNING)
find_package(LLVM REQUIRED CONFIG QUIET HINTS ${llvm_folders})
unset(CMAKE_MESSAGE_LOG_LEVEL)
if(LLVM_VERSION VERSION_LESS 16)
    message(FATAL_ERROR "LLVM 16 or newer is needed (package llvm-NN-dev); found ${LLVM_VERSION}.")
endif()

# Libraries that parts of LLVM need which reading an object file does not pull in. Their headers'
# packages may be missing.
foreach(unused zstd::libzstd_shared ZLIB::ZLIB LibXml2::LibXml2 LibEdit::LibEdit)
    if(NOT TARGET ${unused})
        add_library(${unused} INTERFACE IMPORTED)
    endif()
endforeach()

llvm_map_components_to_libnames(llvm_libraries object support symbolize)
add_library(llvm_object INTERFACE)
# Behind libstdc++'s own headers, which it must not hide.
target_compile_options(llvm_object INTERFACE "SHELL:-idirafter ${LLVM_INCLUDE_DIRS}")
target_link_libraries(llvm_object INTERFACE ${llvm_libraries})
# Reading debug information may take zstd, whose package for developers may be missing; the library
# itself came with LLVM.
find_library(ZSTD NAMES zstd libzstd.so.1 REQUIRED)
target_link_libraries(llvm_object INTERFACE ${ZSTD})
# A program exports its symbols for the images that it loads. LLVM's are not among them, so that
# what is not used of it can be left out.
file(GLOB llvm_archives RELATIVE ${LLVM_LIBRARY_DIRS} ${LLVM_LIBRARY_DIRS}/libLLVM*.a)
list(JOIN llvm_archives ":" llvm_archives)
target_link_options(llvm_object INTERFACE
    LINKER:--as-needed LINKER:--gc-sections LINKER:--exclude-libs=${llvm_archives})
