# Installs the build into a fresh prefix, then builds and runs a small host against it, once
# through find_package(zbBase CONFIG) and once through pkg-config.
file(REMOVE_RECURSE ${WORK_DIR})
set(prefix ${WORK_DIR}/prefix)

function(run)
  execute_process(COMMAND ${ARGV} RESULT_VARIABLE rc OUTPUT_VARIABLE out ERROR_VARIABLE err)
  if(NOT rc EQUAL 0)
    message(FATAL_ERROR "failed: ${ARGV}\n${out}\n${err}")
  endif()
  set(last_output "${out}" PARENT_SCOPE)
endfunction()

run(${CMAKE_COMMAND} --install ${BUILD_DIR} --prefix ${prefix})

run(${CMAKE_COMMAND} -S ${SOURCE_DIR} -B ${WORK_DIR}/host -DCMAKE_PREFIX_PATH=${prefix}
    -DCMAKE_CXX_COMPILER=${CXX})
run(${CMAKE_COMMAND} --build ${WORK_DIR}/host)
run(${WORK_DIR}/host/zbhost)
if(NOT last_output MATCHES "heading 135")
  message(FATAL_ERROR "unexpected output of the find_package host: ${last_output}")
endif()

file(GLOB pcdir ${prefix}/lib*/pkgconfig)
set(ENV{PKG_CONFIG_PATH} ${pcdir})
execute_process(COMMAND pkg-config --cflags --libs zbBase OUTPUT_VARIABLE flags
                RESULT_VARIABLE rc OUTPUT_STRIP_TRAILING_WHITESPACE)
if(NOT rc EQUAL 0)
  message(FATAL_ERROR "pkg-config does not know zbBase")
endif()
separate_arguments(flags UNIX_COMMAND "${flags}")
execute_process(COMMAND pkg-config --variable=libdir zbBase OUTPUT_VARIABLE libdir
                OUTPUT_STRIP_TRAILING_WHITESPACE)
run(${CXX} ${SOURCE_DIR}/host.cpp -o ${WORK_DIR}/zbhost-pc ${flags} -Wl,-rpath,${libdir})
run(${WORK_DIR}/zbhost-pc)
if(NOT last_output MATCHES "heading 135")
  message(FATAL_ERROR "unexpected output of the pkg-config host: ${last_output}")
endif()
file(REMOVE_RECURSE ${WORK_DIR})
