# cmake -DOBJDUMP=... -DPROGRAM=... -DUNWANTED=<names separated by |> -P CheckImports.cmake: fails when the program loads
# one of these DLLs at its start.
execute_process(COMMAND ${OBJDUMP} -p ${PROGRAM} OUTPUT_VARIABLE listing COMMAND_ERROR_IS_FATAL ANY)
string(TOLOWER "${listing}" listing)
if(listing MATCHES "dll name: ((${UNWANTED}).dll.*)")
  string(SUBSTRING "${CMAKE_MATCH_1}" 0 400 functions)
  file(REMOVE ${PROGRAM})
  message(FATAL_ERROR "${PROGRAM} may not load at its start (see cmake/DelayLoad.cmake): ${functions}")
endif()
