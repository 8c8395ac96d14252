# add_test_suites(TARGET LABEL label [SPLIT suite...] [SLOW name...] [ENVIRONMENT variable=value...])
# Registers a GoogleTest program with CTest: one test for each suite, under the suite's name, and one for
# each test of a split suite. The program is asked when ctest starts, so that no suite can be forgotten.
# A suite that takes more than 5 s alone on an idle processor is split, so that its tests run side by side.
# A single test that takes that long is slow and gets the label "slow" too; SLOW names such tests of split
# suites, and suites that have only such tests.
function(add_test_suites target)
    cmake_parse_arguments(PARSE_ARGV 1 arg "" "LABEL" "SPLIT;SLOW;ENVIRONMENT")
    set(script "${CMAKE_CURRENT_BINARY_DIR}/${target}-suites.cmake")
    file(GENERATE OUTPUT "${script}" CONTENT "set(target ${target})
set(program \"$<TARGET_FILE:${target}>\")
set(label ${arg_LABEL})
set(split \"${arg_SPLIT}\")
set(slow \"${arg_SLOW}\")
set(environment \"${arg_ENVIRONMENT}\")
include(\"${PROJECT_SOURCE_DIR}/cmake/RegisterSuites.cmake\")
")
    set_property(DIRECTORY APPEND PROPERTY TEST_INCLUDE_FILES "${script}")
endfunction()
