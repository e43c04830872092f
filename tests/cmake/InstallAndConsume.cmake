# Installs the build into a fresh prefix, then builds and runs a small host against it, once
# through find_package(zbBase CONFIG) and once through pkg-config. A cross build's hosts are
# configured with its toolchain file and run through its emulator, with zbBase.dll beside them.
# Arguments: BUILD_DIR, SOURCE_DIR (the host project), WORK_DIR, and those of HostBuild.cmake.
include(${CMAKE_CURRENT_LIST_DIR}/HostBuild.cmake)
file(REMOVE_RECURSE ${WORK_DIR})
set(prefix ${WORK_DIR}/prefix)

run(${CMAKE_COMMAND} --install ${BUILD_DIR} --prefix ${prefix})

set(find_args -DCMAKE_PREFIX_PATH=${prefix})
if(TOOLCHAIN)
  # A cross toolchain looks for packages under its find roots only: the prefix becomes one.
  list(APPEND find_args -DCMAKE_FIND_ROOT_PATH=${prefix})
endif()
run(${CMAKE_COMMAND} -S ${SOURCE_DIR} -B ${WORK_DIR}/host ${host_configure_args} ${find_args})
run(${CMAKE_COMMAND} --build ${WORK_DIR}/host)
file(GLOB program ${WORK_DIR}/host/zbhost ${WORK_DIR}/host/zbhost.exe)
run_host(${program})

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
if(TOOLCHAIN)
  # A Windows program finds zbBase.dll beside it; the MinGW runtime is linked in.
  set(program ${WORK_DIR}/zbhost-pc.exe)
  run(${CXX} ${SOURCE_DIR}/host.cpp -o ${program} ${flags} -static-libgcc -static-libstdc++)
  file(COPY ${prefix}/bin/zbBase.dll DESTINATION ${WORK_DIR})
else()
  set(program ${WORK_DIR}/zbhost-pc)
  run(${CXX} ${SOURCE_DIR}/host.cpp -o ${program} ${flags} -Wl,-rpath,${libdir})
endif()
run_host(${program})
file(REMOVE_RECURSE ${WORK_DIR})
