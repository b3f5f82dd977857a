# cmake -P script of the tests guide_example_* (see install_tests.cmake): a program with a
# .out file must end at once and print exactly that file; any other (a window) must still
# be running after a few seconds, or have ended without an error.
if(EXISTS ${EXPECTED})
  execute_process(COMMAND ${PROGRAM} RESULT_VARIABLE rc OUTPUT_VARIABLE out ERROR_VARIABLE err TIMEOUT 60)
  if(NOT rc EQUAL 0)
    message(FATAL_ERROR "${PROGRAM} failed (${rc}):\n${out}\n${err}")
  endif()
  file(READ ${EXPECTED} expected)
  if(NOT out STREQUAL expected)
    message(FATAL_ERROR "${PROGRAM} printed\n${out}\ninstead of\n${expected}\n${err}")
  endif()
else()
  execute_process(COMMAND ${PROGRAM} RESULT_VARIABLE rc OUTPUT_VARIABLE out ERROR_VARIABLE err TIMEOUT 4)
  if(NOT rc EQUAL 0 AND NOT rc MATCHES "timeout")
    message(FATAL_ERROR "${PROGRAM} failed (${rc}):\n${out}\n${err}")
  endif()
  message(STATUS "${PROGRAM}: ${rc}")
endif()
