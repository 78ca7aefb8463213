# run(<command...>): runs a command from a ctest script, failing the test with the command
# and its output when it exits non-zero; otherwise the output goes to the test's log.
function(run)
  execute_process(COMMAND ${ARGN} RESULT_VARIABLE rc OUTPUT_VARIABLE out ERROR_VARIABLE out)
  if(NOT rc EQUAL 0)
    string(REPLACE ";" " " cmd "${ARGN}")
    message(FATAL_ERROR "failed (${rc}): ${cmd}\n${out}")
  endif()
  message(STATUS "${out}")
endfunction()
