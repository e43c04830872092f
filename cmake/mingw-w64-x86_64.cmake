# Cross build of zbBase.dll with MinGW-w64 (posix threads); programs run under Wine.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)
set(CMAKE_C_COMPILER x86_64-w64-mingw32-gcc-posix)
set(CMAKE_CXX_COMPILER x86_64-w64-mingw32-g++-posix)
set(CMAKE_RC_COMPILER x86_64-w64-mingw32-windres)
# Libraries and packages are looked for under the MinGW-w64 root, and under the folders given
# with -DCMAKE_FIND_ROOT_PATH=... (such as the install prefix of other cross-built libraries).
list(APPEND CMAKE_FIND_ROOT_PATH /usr/x86_64-w64-mingw32)
list(REMOVE_DUPLICATES CMAKE_FIND_ROOT_PATH)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
# The 64-bit Wine loader runs the programs (ctest, gtest_discover_tests). Debian's wine64
# package installs it as /usr/lib/wine/wine64 (the wine package adds /usr/bin/wine64).
if(NOT CMAKE_CROSSCOMPILING_EMULATOR)
  foreach(candidate /usr/lib/wine/wine64 /usr/bin/wine64 /usr/lib/x86_64-linux-gnu/wine/wine64
                    /usr/lib/wine/wine /usr/bin/wine)
    if(EXISTS ${candidate})
      set(CMAKE_CROSSCOMPILING_EMULATOR ${candidate})
      break()
    endif()
  endforeach()
endif()
