# Creates the Wine prefix (WINEPREFIX, or Wine's default) and waits until the Wine server has
# ended, so that programs started in parallel afterwards find a complete prefix.
# Arguments: WINE (the loader), WINESERVER.
if(NOT DEFINED ENV{WINEDEBUG})
  set(ENV{WINEDEBUG} -all)
endif()
if(NOT DEFINED ENV{WINEDLLOVERRIDES})
  # No offer to install Mono or Gecko while the prefix is made.
  set(ENV{WINEDLLOVERRIDES} "mscoree,mshtml=")
endif()
execute_process(COMMAND ${WINE} wineboot --init RESULT_VARIABLE rc OUTPUT_VARIABLE out
                ERROR_VARIABLE err)
if(NOT rc EQUAL 0)
  message(FATAL_ERROR "wineboot --init failed (${rc}):\n${out}\n${err}")
endif()
execute_process(COMMAND ${WINESERVER} -w RESULT_VARIABLE rc)
if(NOT rc EQUAL 0)
  message(FATAL_ERROR "${WINESERVER} -w failed (${rc})")
endif()
if(DEFINED ENV{WINEPREFIX})
  message(STATUS "Wine prefix ready: $ENV{WINEPREFIX}")
else()
  message(STATUS "Wine prefix ready: $ENV{HOME}/.wine")
endif()
