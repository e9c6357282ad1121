# kvn_whole_program_test(NAME TARGET [WITHOUT FILTER] [ONLY FILTER]): runs all tests of a program, or some, as one test.
# They are quick and independent, and starting a process for each would take most of the time. Under Wine a program that
# runs out of stack ends with 0, so there the end of its output counts as well.
function(kvn_whole_program_test name target)
    cmake_parse_arguments(PARSE_ARGV 2 arg "" "ONLY;WITHOUT" "")
    set(command "$<TARGET_FILE:${target}>" --gtest_brief=1)
    if(arg_ONLY)
        list(APPEND command "--gtest_filter=${arg_ONLY}")
    elseif(arg_WITHOUT)
        list(APPEND command "--gtest_filter=-${arg_WITHOUT}")
    endif()
    if(CMAKE_CROSSCOMPILING)
        list(PREPEND command "${CMAKE_SOURCE_DIR}/tests/support/run_to_the_end" "${CMAKE_CROSSCOMPILING_EMULATOR}")
    endif()
    add_test(NAME ${name} COMMAND ${command})
endfunction()
