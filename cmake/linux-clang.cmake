# Toolchain file: Linux, with the newest clang. GCC's Objective-C++ is not an option: its @catch
# fails at run time in code that the loader bridges.
include(${CMAKE_CURRENT_LIST_DIR}/NewestClang.cmake)
set(CMAKE_C_COMPILER ${CLANG_C})
set(CMAKE_CXX_COMPILER ${CLANG_CXX})
set(CMAKE_OBJC_COMPILER ${CLANG_C})
set(CMAKE_OBJCXX_COMPILER ${CLANG_CXX})
# A char has a sign on every system that this project runs on but arm64 Linux.
foreach(language C CXX OBJC OBJCXX)
    set(CMAKE_${language}_FLAGS_INIT -fsigned-char)
endforeach()
set(CMAKE_EXE_LINKER_FLAGS_INIT "-fuse-ld=lld")
set(CMAKE_SHARED_LINKER_FLAGS_INIT "-fuse-ld=lld")
set(CMAKE_MODULE_LINKER_FLAGS_INIT "-fuse-ld=lld")
