# Writes a file by which CTest runs each suite of a GoogleTest program at once: -DPROGRAM= -DPREFIX= -DLABEL= -DTIMEOUT= -DFILE=
execute_process(COMMAND ${PROGRAM} --gtest_list_tests OUTPUT_VARIABLE listing COMMAND_ERROR_IS_FATAL ANY)
string(REGEX MATCHALL "\n[^ \n]+\\." suites "\n${listing}")
if(NOT suites)
  message(FATAL_ERROR "${PROGRAM} has no tests")
endif()
set(text "")
foreach(suite IN LISTS suites)
  string(REGEX REPLACE "\n(.+)\\." "\\1" suite "${suite}")
  set(name ${PREFIX}.${suite})
  string(APPEND text "add_test([==[${name}]==] [==[${PROGRAM}]==] [==[--gtest_filter=${suite}.*]==])\n"
                     "set_tests_properties([==[${name}]==] PROPERTIES TIMEOUT ${TIMEOUT} LABELS ${LABEL})\n")
endforeach()
file(WRITE ${FILE} "${text}")
