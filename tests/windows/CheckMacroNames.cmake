# Fails when a name in the public headers is also a macro of the Windows headers that hosts
# include (<windows.h> in full, with and without UNICODE, and its usual companions), unless
# the header declares that name under every state of the macro. Such a macro would rename the
# library's declaration or the host's call, depending on the order of the includes.
#   -DCXX=<the compiler of the Windows build> -DSOURCE_DIR=<repository> -DWORK_DIR=<scratch>
cmake_minimum_required(VERSION 3.25)
set(handled GetFullPathName) # declared as it stands and under both A and W spellings

file(MAKE_DIRECTORY ${WORK_DIR})
file(WRITE ${WORK_DIR}/library.cpp "#include <zbBase/zbBase.h>\n")
file(WRITE ${WORK_DIR}/windows.cpp
     "#include <winsock2.h>\n#include <windows.h>\n#include <tchar.h>\n#include <commctrl.h>\n"
     "#include <shlobj.h>\n#include <io.h>\n")

# The names of the library's headers as the Windows build sees them: the preprocessed text
# of every line that comes from a file of the library.
execute_process(COMMAND ${CXX} -std=c++17 -E -I${SOURCE_DIR} ${WORK_DIR}/library.cpp
                OUTPUT_FILE ${WORK_DIR}/library.i RESULT_VARIABLE rc)
if(NOT rc EQUAL 0)
  message(FATAL_ERROR "cannot preprocess the library's headers")
endif()
file(STRINGS ${WORK_DIR}/library.i lines)
set(ours FALSE)
set(text "")
foreach(line IN LISTS lines)
  if(line MATCHES "^# [0-9]+ \"([^\"]*)\"")
    string(FIND "${CMAKE_MATCH_1}" "${SOURCE_DIR}/zbBase/" at)
    if(at EQUAL 0)
      set(ours TRUE)
    else()
      set(ours FALSE)
    endif()
  elseif(ours)
    string(APPEND text " ${line}")
  endif()
endforeach()
# Words inside string literals (the messages of static assertions) are no names.
string(REGEX REPLACE "\"[^\"]*\"" "" text "${text}")
string(REGEX MATCHALL "[A-Za-z_][A-Za-z0-9_]*" names "${text}")
list(REMOVE_DUPLICATES names)
list(LENGTH names count)
if(count LESS 200)
  message(FATAL_ERROR "only ${count} names found in the library's headers")
endif()

# The macros of the Windows headers, with and without UNICODE.
set(macros "")
foreach(flags "-DWIN32_UNUSED" "-DUNICODE;-D_UNICODE")
  execute_process(COMMAND ${CXX} -std=c++17 -E -dM ${flags} ${WORK_DIR}/windows.cpp
                  OUTPUT_VARIABLE defines RESULT_VARIABLE rc)
  if(NOT rc EQUAL 0)
    message(FATAL_ERROR "cannot preprocess the Windows headers")
  endif()
  string(APPEND macros "\n${defines}")
endforeach()

set(clashes "")
foreach(name IN LISTS names)
  if(name IN_LIST handled)
    continue()
  endif()
  string(FIND "${macros}" "\n#define ${name} " plain)
  string(FIND "${macros}" "\n#define ${name}(" function)
  if(NOT plain EQUAL -1 OR NOT function EQUAL -1)
    list(APPEND clashes ${name})
  endif()
endforeach()
if(clashes)
  message(FATAL_ERROR "names of the public headers that the Windows headers define as macros: "
                      "${clashes}")
endif()
message(STATUS "${count} names of the public headers, none a macro of the Windows headers")
