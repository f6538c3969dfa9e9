# Run by ctest, for the test program ${program}: a test for each of its suites, since starting a
# process takes longer than most tests. With ZELTO_SINGLE_TESTS in the environment a test for each
# test instead, so that -R finds it by its name.

# What a program ends with whose tests were all skipped.
set(ZELTO_ALL_SKIPPED
    "PASSED  []] 0 tests[.]\n[[]  SKIPPED [^\n]*:\n([[]  SKIPPED [^\n]*\n)+$")

macro(zelto_add_suite name filter)
    add_test(${name} ${program} --gtest_filter=${filter})
    set_tests_properties(${name} PROPERTIES SKIP_REGULAR_EXPRESSION "${ZELTO_ALL_SKIPPED}")
endmacro()

if(NOT EXISTS ${program})
    add_test(${program} ${program}) # not built: fails, and says so
    return()
endif()
execute_process(COMMAND ${program} --gtest_list_tests
    OUTPUT_VARIABLE listed COMMAND_ERROR_IS_FATAL ANY)
# Suites stand at the beginning of a line and end with a point, their tests are indented.
string(REGEX REPLACE " *#[^\n]*" "" listed "${listed}") # values of parameters
string(REGEX MATCHALL "[^\n]+" lines "${listed}")
foreach(line IN LISTS lines)
    string(STRIP ${line} name)
    if(line STREQUAL name)
        set(suite ${name})
        if(NOT DEFINED ENV{ZELTO_SINGLE_TESTS})
            string(REGEX REPLACE "[.]$" "" name ${suite})
            zelto_add_suite(${name} ${suite}*)
        endif()
    elseif(DEFINED ENV{ZELTO_SINGLE_TESTS})
        zelto_add_suite(${suite}${name} ${suite}${name})
    endif()
endforeach()
