# Fails unless the virtual functions of every public class come out in the documented table
# order under both C++ ABIs that hosts use: the Microsoft ABI of Visual C++ (which orders
# overloaded virtual functions in its own way) and the Itanium ABI of GCC, Clang and MinGW.
# clang computes both layouts. The Microsoft side needs standard headers for a Windows
# target: those of the MinGW-w64 compiler are used, with clang in Visual C++ mode.
#   -DCLANG=<clang++> -DMINGW_CXX=<x86_64-w64-mingw32-g++> -DSOURCE_DIR=<repo> -DWORK_DIR=<dir>
cmake_minimum_required(VERSION 3.25)
if(NOT CLANG OR NOT MINGW_CXX)
  message("SKIPPED: needs clang++ and the MinGW-w64 C++ headers (clang: '${CLANG}', "
          "MinGW-w64: '${MINGW_CXX}')")
  return()
endif()

# Class = its virtual functions in table order; ~ is the destructor. A name that occurs
# twice in a table carries its parameters.
set(expected
    "CzbFileUtil=~"
    "CzbLogger=~,setWriteFileMode,setWriteFileMode2,setLog,getDateTime,setLogDataToFile,funcLogFileSave"
    "zbBase::CzbSyncObject=~"
    "CzbText=~"
    "CzbTextExt=~"
    "zbBase::CzbTimeManager=~,SetPlay,SetStop,SetTime,SetPause,GetTime(int*,int*,int*,int*),GetTime(int),GetPlayMode,SetSpeedRate,GetSpeedRate"
    "zbBase::CzbTimeManagerAdv=~,SetPlay,SetStop,SetTime,SetPause,GetTime(int*,int*,int*,int*),GetTime(int),GetPlayMode,SetSpeedRate,GetSpeedRate"
    "CzbTrace=~,setMode,setTrace"
    "CzbTraceExt=~"
    "zbBase::CzbTrajcetoryModel=calculate")

# One probe class per class, with a constructor defined here, so that its table is laid out
# and dumped; the probe adds no virtual function of its own.
file(MAKE_DIRECTORY ${WORK_DIR})
set(probe "#include <zbBase/zbBase.h>\n")
foreach(entry IN LISTS expected)
  string(REGEX REPLACE "=.*" "" class "${entry}")
  string(REGEX REPLACE ".*::" "" short "${class}")
  string(APPEND probe "struct Probe_${short} : ${class} { Probe_${short}(); };\n"
                      "Probe_${short}::Probe_${short}() {}\n")
endforeach()
file(WRITE ${WORK_DIR}/probe.cpp "${probe}")

# The Microsoft ABI: clang for a Visual C++ target (_MSC_VER defined) on the MinGW-w64
# headers, told the GNU macros that those headers and libstdc++ rely on.
execute_process(COMMAND ${MINGW_CXX} -xc++ -E -v ${WORK_DIR}/probe.cpp -o /dev/null
                ERROR_VARIABLE search OUTPUT_QUIET)
string(REGEX MATCH "search starts here:\n(.*)End of search list" search "${search}")
string(REGEX MATCHALL "[^ \n]+" dirs "${CMAKE_MATCH_1}")
set(msvc_includes "")
foreach(dir IN LISTS dirs)
  # The standard library and the C runtime headers; clang brings its own compiler headers.
  if(dir MATCHES "/c\\+\\+" OR dir MATCHES "mingw32/include$")
    list(APPEND msvc_includes -isystem ${dir})
  endif()
endforeach()
if(NOT msvc_includes)
  message("SKIPPED: no include folders found for ${MINGW_CXX}")
  return()
endif()
execute_process(COMMAND ${CLANG} --target=x86_64-w64-windows-gnu -xc++ -dM -E /dev/null
                OUTPUT_VARIABLE gnu_macros)
string(REGEX MATCHALL "#define __GCC_(ATOMIC|HAVE_SYNC)[A-Z0-9_]* [^\n]*" gnu_macros
       "${gnu_macros}")
set(msvc_defines -D__GNUC__=4 -D__GNUC_MINOR__=2 -D__STRICT_ANSI__)
foreach(define IN LISTS gnu_macros)
  string(REGEX REPLACE "#define ([^ ]+) (.*)" "-D\\1=\\2" define "${define}")
  list(APPEND msvc_defines "${define}")
endforeach()

set(abis msvc itanium)
set(msvc_command ${CLANG} --target=x86_64-pc-windows-msvc -std=c++17 -nostdinc++
                 ${msvc_includes} ${msvc_defines})
set(itanium_command ${CLANG} --target=x86_64-linux-gnu -std=c++17)
set(failures "")
foreach(abi IN LISTS abis)
  execute_process(COMMAND ${${abi}_command} -I${SOURCE_DIR} -S -o /dev/null -Xclang
                          -fdump-vtable-layouts ${WORK_DIR}/probe.cpp
                  OUTPUT_VARIABLE dump ERROR_VARIABLE errors RESULT_VARIABLE rc)
  if(NOT rc EQUAL 0)
    message(FATAL_ERROR "clang (${abi} ABI) failed on the public headers:\n${errors}")
  endif()
  file(WRITE ${WORK_DIR}/${abi}.txt "${dump}")
  string(REPLACE "\n" ";" lines "${dump}")
  foreach(entry IN LISTS expected)
    string(REGEX REPLACE "=.*" "" class "${entry}")
    string(REGEX REPLACE ".*::" "" short "${class}")
    string(REGEX REPLACE "^[^=]*=" "" want "${entry}")
    # The table of the probe: "Vtable for 'Probe_X'" (Itanium) or
    # "VFTable for '...' in 'Probe_X'" (Microsoft).
    set(inside FALSE)
    set(names "")
    foreach(line IN LISTS lines)
      if(line MATCHES "^V[Ff]?[Tt]able for .*'Probe_${short}' \\(")
        set(inside TRUE)
      elseif(inside AND line MATCHES "^ *[0-9]+ \\| (.*)$")
        set(slot "${CMAKE_MATCH_1}")
        if(slot MATCHES "RTTI$" OR slot MATCHES "^offset_to_top")
          continue()
        endif()
        if(slot MATCHES "::~")
          set(name "~")
        elseif(slot MATCHES "::([A-Za-z0-9_]+)(\\([^)]*\\))")
          string(REPLACE " " "" params "${CMAKE_MATCH_2}")
          set(name "${CMAKE_MATCH_1}${params}")
        else()
          set(name "?${slot}")
        endif()
        list(APPEND names "${name}")
      elseif(inside AND line STREQUAL "")
        break()
      endif()
    endforeach()
    # One entry for the destructor (Itanium has two), and parameters only where a name
    # occurs twice.
    list(REMOVE_DUPLICATES names)
    set(bare "")
    foreach(name IN LISTS names)
      string(REGEX REPLACE "\\(.*" "" stem "${name}")
      list(APPEND bare "${stem}")
    endforeach()
    set(shown "")
    foreach(name IN LISTS names)
      string(REGEX REPLACE "\\(.*" "" stem "${name}")
      list(FIND bare "${stem}" first)
      list(REMOVE_AT bare ${first})
      list(FIND bare "${stem}" again)
      list(INSERT bare ${first} "${stem}")
      if(again EQUAL -1 AND NOT stem STREQUAL "GetTime")
        list(APPEND shown "${stem}")
      else()
        list(APPEND shown "${name}")
      endif()
    endforeach()
    string(REPLACE ";" "," shown "${shown}")
    if(NOT shown STREQUAL want)
      list(APPEND failures "${abi}: ${class}: ${shown} (documented: ${want})")
    endif()
  endforeach()
endforeach()
if(failures)
  string(REPLACE ";" "\n  " failures "${failures}")
  message(FATAL_ERROR "virtual functions out of the documented order:\n  ${failures}")
endif()
message(STATUS "virtual tables in the documented order under the Microsoft and Itanium ABIs")
