cmake_minimum_required(VERSION 3.25)
# Compiles the help of one language. Run with -DSOURCE=<help folder> -DFOLDER=<language> -DNAME=<project>
# -DCODEPAGE=<number> -DWORK=<scratch folder> -DPRODUCT=<.chm to make> -DCHMCMD= -DCHMLS= -DICONV=<programs>.
file(REMOVE_RECURSE ${WORK})
file(MAKE_DIRECTORY ${WORK})
file(GLOB inputs LIST_DIRECTORIES false ${SOURCE}/${FOLDER}/*)
file(GLOB pictures ${SOURCE}/${FOLDER}/pictures/*.png)
file(COPY ${pictures} DESTINATION ${WORK})
foreach(input IN LISTS inputs ITEMS ${SOURCE}/style.css)
  get_filename_component(file_name ${input} NAME)
  file(READ ${input} text)
  string(REPLACE "charset=utf-8" "charset=windows-${CODEPAGE}" text "${text}")
  # The .chm has no folders.
  string(REPLACE "../style.css" "style.css" text "${text}")
  string(REPLACE "src=\"pictures/" "src=\"" text "${text}")
  file(WRITE ${WORK}/utf8 "${text}")
  execute_process(COMMAND ${ICONV} -f UTF-8 -t CP${CODEPAGE} ${WORK}/utf8 OUTPUT_FILE ${WORK}/${file_name}
    RESULT_VARIABLE failed ERROR_VARIABLE said)
  if(failed)
    message(FATAL_ERROR "${input}: a character that code page ${CODEPAGE} lacks; write it as an entity.\n${said}")
  endif()
endforeach()
file(REMOVE ${WORK}/utf8)

# Its exit code is 0 for a missing project and for dead links; after a missing page an empty file stays.
execute_process(COMMAND ${CHMCMD} ${NAME}.hhp WORKING_DIRECTORY ${WORK}
  OUTPUT_VARIABLE said ERROR_VARIABLE said RESULT_VARIABLE failed)
if(failed OR said MATCHES "[Ww]arning|[Ee]rror|[Cc]ouldn't" OR NOT EXISTS ${WORK}/${NAME}.chm)
  message(FATAL_ERROR "${NAME}.chm is not made (status ${failed}):\n${said}")
endif()

execute_process(COMMAND ${CHMLS} -n -p list ${NAME}.chm WORKING_DIRECTORY ${WORK} OUTPUT_VARIABLE held ERROR_QUIET)
foreach(input IN LISTS inputs pictures ITEMS style.css)
  get_filename_component(file_name ${input} NAME)
  if(NOT file_name MATCHES "\\.hhp$")
    string(FIND "${held}" "/${file_name}\n" place)
    if(place EQUAL -1)
      message(FATAL_ERROR "${NAME}.chm does not hold ${file_name}:\n${held}")
    endif()
  endif()
endforeach()
file(COPY_FILE ${WORK}/${NAME}.chm ${PRODUCT})
