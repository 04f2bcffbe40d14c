include(GoogleTest)
include(ProcessorCount)
if(NOT TARGET GTest::gmock)
    find_package(GTest REQUIRED)
endif()
ProcessorCount(PROCESSORS)

# Seconds after which something has to be wrong; emulated, a set takes fifteen times as long.
set(LONGEST_SET 1500)
if(CMAKE_CROSSCOMPILING)
    set(LONGEST_SET 22500)
endif()

# Everything that './dev test' needs, and what '--all' needs besides.
add_custom_target(tests)
add_custom_target(whole_tests)
add_dependencies(whole_tests tests)

# test_set(SET PROGRAM ARGUMENTS... [PART ARGUMENTS...] [WHOLE_ONLY]): the tests of a GoogleTest program,
# with these arguments. Each has a process of its own: what is bound or loaded stays so.
# CTest knows them by name (label "each"), and all together in the configurations "Isolated" and
# "Whole", where the program starts once and forks for each: many times faster. "Isolated" is what a
# change has to pass: where PART is given, it makes the set smaller there; with WHOLE_ONLY there is no
# such set, and the program is built for "Whole" alone.
function(test_set set program)
    if(NOT TARGET ${program}) # sanitized, for a Mac or emulated
        return()
    endif()
    cmake_parse_arguments(PARSE_ARGV 2 ARG "WHOLE_ONLY" "" "PART")
    set(arguments ${ARG_UNPARSED_ARGUMENTS})
    gtest_discover_tests(${program}
        TEST_PREFIX ${set}/ TEST_LIST ${set}_tests EXTRA_ARGS ${arguments}
        PROPERTIES LABELS each ENVIRONMENT ASAN_OPTIONS=symbolize=1 NO_PRETTY_VALUES DISCOVERY_MODE PRE_TEST)
    set(jobs ${PROCESSORS})
    if(program MATCHES "_sanitized$")
        # The leak check at a test's end sleeps more than it works.
        math(EXPR jobs "2 * ${PROCESSORS}")
    endif()
    string(REPLACE / . report ${set})
    set(isolated --isolate --jobs ${jobs} --junit ${CMAKE_SOURCE_DIR}/build/junit/${report}.xml)
    add_test(NAME whole/${set} CONFIGURATIONS Whole COMMAND ${program} ${isolated} ${arguments})
    set_tests_properties(whole/${set} PROPERTIES PROCESSORS ${PROCESSORS} TIMEOUT ${LONGEST_SET})
    if(ARG_WHOLE_ONLY)
        add_dependencies(whole_tests ${program})
        return()
    endif()
    add_test(NAME part/${set} CONFIGURATIONS Isolated
        COMMAND ${program} ${isolated} ${arguments} ${ARG_PART})
    set_tests_properties(part/${set} PROPERTIES PROCESSORS ${PROCESSORS} TIMEOUT ${LONGEST_SET})
    add_dependencies(tests ${program})
endfunction()

# test_program(NAME sources...): a GoogleTest program.
function(test_program NAME)
    add_executable(${NAME} ${ARGN})
    target_link_libraries(${NAME} PRIVATE
        project_warnings sanitizer_options gnustep_base test_runner)
    target_precompile_headers(${NAME} REUSE_FROM test_headers)
    # The images under test resolve the platform's names in the program that loads them.
    set_target_properties(${NAME} PROPERTIES ENABLE_EXPORTS ON)
endfunction()

# project_test(NAME sources...): a GoogleTest program with the usual main, and its tests.
function(project_test NAME)
    test_program(${NAME} ${ARGN})
    target_link_libraries(${NAME} PRIVATE test_main)
    test_set(${NAME} ${NAME})
endfunction()

# sanitized_tests(NAME [COMPILED_AGAIN sources...] [DEFINITIONS definitions...]): NAME_sanitized, the
# same test objects linked with everything under test as the sanitizers want it. Sources that must
# know of that are compiled again, with these definitions. To be called when NAME is complete.
function(sanitized_tests NAME)
    if(MACOS_HOST OR CMAKE_CROSSCOMPILING)
        return()
    endif()
    cmake_parse_arguments(PARSE_ARGV 1 ARG "" "" "COMPILED_AGAIN;DEFINITIONS")
    set(objects $<TARGET_OBJECTS:${NAME}>)
    foreach(source IN LISTS ARG_COMPILED_AGAIN)
        set(objects $<FILTER:${objects},EXCLUDE,/${source}>)
    endforeach()
    set(twin ${NAME}_sanitized)
    add_executable(${twin} ${objects} ${ARG_COMPILED_AGAIN})
    get_target_property(libraries ${NAME} LINK_LIBRARIES)
    sanitized_names(libraries ${libraries})
    target_link_libraries(${twin} PRIVATE ${libraries} sanitized)
    target_include_directories(${twin} PRIVATE $<TARGET_PROPERTY:${NAME},INCLUDE_DIRECTORIES>)
    target_compile_options(${twin} PRIVATE ${SANITIZE_CODE})
    target_compile_definitions(${twin} PRIVATE ${ARG_DEFINITIONS})
    set_target_properties(${twin} PROPERTIES
        OUTPUT_NAME ${NAME}
        EXPORT_COMPILE_COMMANDS OFF
        RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/sanitized
        ENABLE_EXPORTS ON)
    get_target_property(needed ${NAME} MANUALLY_ADDED_DEPENDENCIES)
    if(needed)
        sanitized_names(needed ${needed})
        add_dependencies(${twin} ${needed})
    endif()
endfunction()
