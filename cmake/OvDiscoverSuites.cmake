# Writes OUTPUT, a file for CTest with one test for each suite of PROGRAM: LABEL, TIMEOUT and ENVIRONMENT (with "|" between
# the variables) go to each. A process for every single case would start the software rasteriser 1,500 times.
string(REPLACE "|" ";" environment "${ENVIRONMENT}")
execute_process(COMMAND ${CMAKE_COMMAND} -E env ${environment} "${PROGRAM}" --gtest_list_tests
    OUTPUT_VARIABLE list COMMAND_ERROR_IS_FATAL ANY)
string(REGEX MATCHALL "(^|\n)[^ \n]+\\." suites "${list}")
set(text "")
foreach(suite IN LISTS suites)
    string(REGEX REPLACE "^\n|\\.$" "" suite "${suite}")
    string(APPEND text
        "add_test([==[${LABEL}.${suite}]==] [==[${PROGRAM}]==] [==[--gtest_filter=${suite}.*]==] --gtest_brief=1)\n"
        "set_tests_properties([==[${LABEL}.${suite}]==] PROPERTIES LABELS ${LABEL} TIMEOUT ${TIMEOUT}\n"
        "    WORKING_DIRECTORY [==[${FOLDER}]==] ENVIRONMENT [==[${environment}]==])\n")
endforeach()
if(text STREQUAL "")
    message(FATAL_ERROR "${PROGRAM} has no tests")
endif()
file(WRITE "${OUTPUT}" "${text}")
