include(GoogleTest)
include(ProcessorCount)
find_package(GTest REQUIRED)
ProcessorCount(PROCESSORS)
# The leak check at a test's end sleeps more than it works.
set(TEST_JOBS ${PROCESSORS})
if(SANITIZE)
    math(EXPR TEST_JOBS "2 * ${PROCESSORS}")
endif()

# test_set(SET PROGRAM ARGUMENTS...): the tests of a GoogleTest program, with these arguments. Each
# has a process of its own: what is bound or loaded stays so.
# CTest knows them by name (label "each"), and all together in the configuration "Isolated", where
# the program starts once and forks for each: many times faster.
function(test_set set program)
    gtest_discover_tests(${program}
        TEST_PREFIX ${set}/ TEST_LIST ${set}_tests EXTRA_ARGS ${ARGN}
        PROPERTIES LABELS each NO_PRETTY_VALUES DISCOVERY_MODE PRE_TEST)
    add_test(NAME all/${set} CONFIGURATIONS Isolated
        COMMAND ${program} --isolate --jobs ${TEST_JOBS} ${ARGN})
    set_tests_properties(all/${set} PROPERTIES PROCESSORS ${PROCESSORS})
endfunction()

# project_test(NAME sources...): a GoogleTest program and its tests.
function(project_test NAME)
    add_executable(${NAME} ${ARGN} ${CMAKE_SOURCE_DIR}/tests/runner/Main.cpp)
    target_link_libraries(${NAME} PRIVATE project_warnings sanitizer_options test_runner)
    # The images under test resolve the platform's names in the program that loads them.
    set_target_properties(${NAME} PROPERTIES ENABLE_EXPORTS ON)
    test_set(${NAME} ${NAME})
endfunction()
