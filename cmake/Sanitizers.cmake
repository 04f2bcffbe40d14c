option(SANITIZE "Build with AddressSanitizer and UndefinedBehaviorSanitizer" OFF)
if(SANITIZE)
    # No recovery: what a sanitizer reports fails the test.
    # Host and plug-in call each other by name, each through declarations of its own: a type that is
    # named differently on the other side is no fault.
    add_compile_options(-fsanitize=address,undefined -fno-sanitize=function -fno-sanitize-recover=all
                        -fno-omit-frame-pointer)
    add_link_options(-fsanitize=address,undefined)
endif()

# For programs: link this.
add_library(sanitizer_options INTERFACE)
if(SANITIZE)
    target_sources(sanitizer_options INTERFACE ${CMAKE_CURRENT_LIST_DIR}/SanitizerOptions.cpp)
endif()
