# Included by ctest with the variables that add_test_suites() sets.
cmake_policy(VERSION 3.25)
if(NOT EXISTS "${program}")
    add_test(${target}-is-not-built "${program}")
    return()
endif()
execute_process(COMMAND "${program}" --gtest_list_tests
    OUTPUT_VARIABLE listing ERROR_VARIABLE errors RESULT_VARIABLE result)
if(NOT result EQUAL 0)
    message(FATAL_ERROR "${program} does not list its tests (${result}): ${errors}")
endif()

macro(register name filter labels seconds)
    add_test("${name}" "${program}" "--gtest_filter=${filter}" --gtest_brief=1)
    set_tests_properties("${name}" PROPERTIES
        LABELS "${labels}" TIMEOUT ${seconds} ENVIRONMENT "${environment}")
endmacro()

string(REGEX REPLACE " *#[^\n]*" "" listing "${listing}") # the parameters' values
string(REPLACE "\n" ";" lines "${listing}")
foreach(line IN LISTS lines)
    if(line MATCHES "^([^ ]+)\\.$")
        set(suite "${CMAKE_MATCH_1}")
        if(NOT suite IN_LIST slow_suites)
            register("${suite}" "${suite}.*" "${label}" 300)
        endif()
    elseif(line MATCHES "^  ([^ ]+)$" AND suite IN_LIST slow_suites)
        register("${suite}.${CMAKE_MATCH_1}" "${suite}.${CMAKE_MATCH_1}" "${label};slow" 900)
    endif()
endforeach()
