# A newer compiler than ours may find more: then this lets it build all the same.
option(WARNINGS_AS_ERRORS "Treat warnings as errors" ON)

add_library(project_warnings INTERFACE)
target_compile_options(project_warnings INTERFACE
    -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wnon-virtual-dtor -Wunreachable-code 
    $<$<BOOL:${WARNINGS_AS_ERRORS}>:-Werror>)
