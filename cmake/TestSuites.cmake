# Read by ctest: makes one test of each suite of a GoogleTest program, as gtest_discover_tests makes
# one of each test. That starts the program less often, which takes long under emulators and
# sanitizers. Takes COMMAND, which runs the program, PREFIX of the tests' names, and TIMEOUT, in
# seconds.
execute_process(COMMAND ${COMMAND} --gtest_list_tests
    OUTPUT_VARIABLE listing RESULT_VARIABLE result)
# Suites stand at the beginning of a line and end with a point, tests are indented.
string(REGEX MATCHALL "\n[A-Za-z0-9_/]+\\." suites "\n${listing}")
if(NOT result EQUAL 0 OR NOT suites)
    message(FATAL_ERROR "${COMMAND} does not list its tests: ${result}")
endif()
# A device in an emulator of the whole machine is slower than any.
if(DEFINED ENV{TQ_ON_DEVICE})
    math(EXPR TIMEOUT "${TIMEOUT} * 5")
endif()
foreach(suite IN LISTS suites)
    string(REGEX REPLACE "[\n.]" "" suite "${suite}")
    add_test("${PREFIX}${suite}" ${COMMAND} "--gtest_filter=${suite}.*")
    set_tests_properties("${PREFIX}${suite}" PROPERTIES TIMEOUT ${TIMEOUT})
    if(suite MATCHES "[Tt]ftp|[Tt]qfetch")
        # These wait most of the time: they come first, beside the others.
        set_tests_properties("${PREFIX}${suite}" PROPERTIES COST 100)
    endif()
endforeach()
