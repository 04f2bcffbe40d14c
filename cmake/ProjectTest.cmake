include(GoogleTest)
find_package(GTest REQUIRED)

# project_test(NAME sources...): a GoogleTest program whose tests CTest runs one process each.
function(project_test NAME)
    add_executable(${NAME} ${ARGN})
    target_link_libraries(${NAME} PRIVATE
        project_warnings sanitizer_options GTest::gmock GTest::gtest_main)
    # The images under test resolve the platform's names in the program that loads them.
    set_target_properties(${NAME} PROPERTIES ENABLE_EXPORTS ON)
    gtest_discover_tests(${NAME} TEST_PREFIX ${NAME}/ NO_PRETTY_VALUES DISCOVERY_MODE PRE_TEST)
endfunction()
