# cmake -DOBJDUMP=... -DPROGRAM=... -P CheckImports.cmake: fails when the program loads a DLL at its start that it need
# not.
execute_process(COMMAND ${OBJDUMP} -p ${PROGRAM} OUTPUT_VARIABLE listing COMMAND_ERROR_IS_FATAL ANY)
string(TOLOWER "${listing}" listing)
if(listing MATCHES "dll name: ((comctl32|comdlg32|shell32|uxtheme|winmm).dll.*)")
  string(SUBSTRING "${CMAKE_MATCH_1}" 0 400 functions)
  file(REMOVE ${PROGRAM})
  message(FATAL_ERROR "Not in cmake/DelayLoad.cmake: a function of ${functions}")
endif()
