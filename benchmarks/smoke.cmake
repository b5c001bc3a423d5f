# Runs every benchmark for a moment, but for the machines that take long to make. PROGRAM is the benchmarks'.
execute_process(
  COMMAND ${PROGRAM} --benchmark_min_time=0.0001 --benchmark_filter=-/10000$
  OUTPUT_VARIABLE output ERROR_VARIABLE errors RESULT_VARIABLE status)
string(REGEX MATCHALL "[^\n]*ERROR OCCURRED[^\n]*" failed "${output}")
if(NOT status EQUAL 0 OR failed OR NOT output MATCHES "flash/read_16_MiB/library")
  message(FATAL_ERROR "status ${status}\n${failed}\n${errors}")
endif()
