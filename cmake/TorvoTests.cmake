# add_test_suites(TARGET LABEL label [SLOW suite...] [ENVIRONMENT variable=value...])
# Registers a GoogleTest program with CTest: one test for each suite, under the suite's name, and one for
# each test of a slow suite. The program is asked when ctest starts, so that no suite can be forgotten.
# A suite is slow when it takes more than 5 s alone on an idle processor; it gets the label "slow" too.
function(add_test_suites target)
    cmake_parse_arguments(PARSE_ARGV 1 arg "" "LABEL" "SLOW;ENVIRONMENT")
    set(script "${CMAKE_CURRENT_BINARY_DIR}/${target}-suites.cmake")
    file(GENERATE OUTPUT "${script}" CONTENT "set(target ${target})
set(program \"$<TARGET_FILE:${target}>\")
set(label ${arg_LABEL})
set(slow_suites \"${arg_SLOW}\")
set(environment \"${arg_ENVIRONMENT}\")
include(\"${PROJECT_SOURCE_DIR}/cmake/RegisterSuites.cmake\")
")
    set_property(DIRECTORY APPEND PROPERTY TEST_INCLUDE_FILES "${script}")
endfunction()
