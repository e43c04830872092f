# Helpers of the scripts that build host projects the way users build theirs.
# Arguments they share: CXX (the compiler of the build under test), GENERATOR, and for a cross
# build TOOLCHAIN (its toolchain file) and EMULATOR (what runs its programs).
cmake_minimum_required(VERSION 3.25)

# run(COMMAND...): runs a command, fails with its output unless it succeeds; the output is left
# in last_output and the error output in last_error.
function(run)
  execute_process(COMMAND ${ARGV} RESULT_VARIABLE rc OUTPUT_VARIABLE out ERROR_VARIABLE err)
  if(NOT rc EQUAL 0)
    message(FATAL_ERROR "failed (${rc}): ${ARGV}\n${out}\n${err}")
  endif()
  set(last_output "${out}" PARENT_SCOPE)
  set(last_error "${err}" PARENT_SCOPE)
endfunction()

# Configure options of a host project built like the build under test.
set(host_configure_args -DCMAKE_CXX_COMPILER=${CXX} -DCMAKE_BUILD_TYPE=Release)
if(GENERATOR)
  list(APPEND host_configure_args -G ${GENERATOR})
endif()
if(TOOLCHAIN)
  list(APPEND host_configure_args -DCMAKE_TOOLCHAIN_FILE=${TOOLCHAIN})
endif()

# run_host(PROGRAM): runs a host program (through the emulator of a cross build) and checks
# what it prints.
function(run_host program)
  run(${EMULATOR} ${program})
  if(NOT last_output MATCHES "^heading 135\r?\n$")
    message(FATAL_ERROR "unexpected output of ${program}: ${last_output}")
  endif()
endfunction()
