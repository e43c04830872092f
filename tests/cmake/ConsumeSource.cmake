# zbBase taken in from its sources by a host project, with GoogleTest hidden: through
# add_subdirectory of the source tree, then through FetchContent from an archive that holds
# only what the library needs (CMakeLists.txt, cmake/, zbBase/). Each host is built and run.
# Last, the source tree configured as the top-level project with GoogleTest hidden must still
# succeed, saying that the tests are skipped; its Debug library carries the Windows names.
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

# The Debug configuration, with a query of CMake's file API for the names of the library's files.
set(top ${WORK_DIR}/top)
file(WRITE ${top}/.cmake/api/v1/query/codemodel-v2 "")
run(${CMAKE_COMMAND} -S ${ZBBASE_SOURCE} -B ${top} ${host_configure_args} ${hidden}
    -DCMAKE_BUILD_TYPE=Debug -DZBBASE_BUILD_EXAMPLES=OFF)
if(NOT last_error MATCHES "zbBase tests are skipped")
  message(FATAL_ERROR "no word of the skipped tests:\n${last_output}\n${last_error}")
endif()

# Files of the Debug library: zbBased.dll with its import library on Windows (libzbBased.dll.a
# from MinGW), no postfix elsewhere.
file(GLOB index ${top}/.cmake/api/v1/reply/index-*.json)
file(READ ${index} json)
string(JSON codemodel GET "${json}" reply codemodel-v2 jsonFile)
file(READ ${top}/.cmake/api/v1/reply/${codemodel} json)
string(JSON count LENGTH "${json}" configurations 0 targets)
math(EXPR last "${count} - 1")
set(artifacts "")
foreach(i RANGE ${last})
  string(JSON name GET "${json}" configurations 0 targets ${i} name)
  if(name STREQUAL "zbBase")
    string(JSON file GET "${json}" configurations 0 targets ${i} jsonFile)
    file(READ ${top}/.cmake/api/v1/reply/${file} target)
    string(JSON n LENGTH "${target}" artifacts)
    math(EXPR n "${n} - 1")
    foreach(a RANGE ${n})
      string(JSON path GET "${target}" artifacts ${a} path)
      get_filename_component(path ${path} NAME)
      list(APPEND artifacts ${path})
    endforeach()
  endif()
endforeach()
if(TOOLCHAIN)
  foreach(name zbBased.dll libzbBased.dll.a)
    if(NOT name IN_LIST artifacts)
      message(FATAL_ERROR "the Debug library's files are ${artifacts}, without ${name}")
    endif()
  endforeach()
elseif(NOT artifacts MATCHES "^libzbBase\\.so" OR artifacts MATCHES "zbBased")
  message(FATAL_ERROR "the Debug library's files are ${artifacts}")
endif()
file(REMOVE_RECURSE ${WORK_DIR})
