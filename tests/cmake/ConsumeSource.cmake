# zbBase taken in from its sources by a host project, with GoogleTest hidden: through
# add_subdirectory of the source tree, then through FetchContent from an archive that holds
# only what the library needs (CMakeLists.txt, cmake/, zbBase/). Each host is built and run.
# Last, the source tree configured as the top-level project with GoogleTest hidden must still
# succeed, saying that the tests are skipped.
# Arguments: ZBBASE_SOURCE, SOURCE_DIR (the host project), WORK_DIR, and those of
# HostBuild.cmake.
include(${CMAKE_CURRENT_LIST_DIR}/HostBuild.cmake)
file(REMOVE_RECURSE ${WORK_DIR})
file(MAKE_DIRECTORY ${WORK_DIR})
set(hidden -DCMAKE_DISABLE_FIND_PACKAGE_GTest=ON)

run(${CMAKE_COMMAND} -E tar czf ${WORK_DIR}/zbBase-src.tar.gz CMakeLists.txt cmake zbBase
    WORKING_DIRECTORY ${ZBBASE_SOURCE})

foreach(mode subdirectory fetch)
  set(host ${WORK_DIR}/${mode})
  # GoogleTest is hidden from a project that must not even look for it.
  run(${CMAKE_COMMAND} -S ${SOURCE_DIR} -B ${host} ${host_configure_args} ${hidden}
      --no-warn-unused-cli -DZBHOST_MODE=${mode} -DZBBASE_SOURCE=${ZBBASE_SOURCE}
      -DZBBASE_URL=${WORK_DIR}/zbBase-src.tar.gz)
  if("${last_output}${last_error}" MATCHES "GoogleTest|CMake Warning")
    message(FATAL_ERROR "the ${mode} host configured with warnings:\n${last_output}\n${last_error}")
  endif()
  run(${CMAKE_COMMAND} --build ${host} --target zbhost)
  file(GLOB program ${host}/zbhost ${host}/zbhost.exe)
  run_host(${program})
endforeach()

run(${CMAKE_COMMAND} -S ${ZBBASE_SOURCE} -B ${WORK_DIR}/top ${host_configure_args} ${hidden}
    -DZBBASE_BUILD_EXAMPLES=OFF)
if(NOT last_error MATCHES "zbBase tests are skipped")
  message(FATAL_ERROR "no word of the skipped tests:\n${last_output}\n${last_error}")
endif()
file(REMOVE_RECURSE ${WORK_DIR})
