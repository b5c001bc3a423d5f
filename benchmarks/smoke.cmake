# Runs every benchmark of PROGRAM for a moment, but for those that take long (LEFT_OUT). One of them is EXPECTED.
execute_process(
  COMMAND ${PROGRAM} --benchmark_min_time=0.0001 --benchmark_filter=-${LEFT_OUT}
  OUTPUT_VARIABLE output ERROR_VARIABLE errors RESULT_VARIABLE status)
string(REGEX MATCHALL "[^\n]*ERROR OCCURRED[^\n]*" failed "${output}")
if(NOT status EQUAL 0 OR failed OR NOT output MATCHES "${EXPECTED}")
  message(FATAL_ERROR "status ${status}\n${failed}\n${errors}")
endif()
