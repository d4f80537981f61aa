# The help: UTF-8 pages in help/<language> with their pictures, made into one .chm per language beside the viewer. Faults in the pages end the
# build, because the compiler itself passes over most of them.
function(add_help)
  find_program(CHMCMD NAMES chmcmd chmcmd-3.2.2 REQUIRED)
  find_program(CHMLS NAMES chmls chmls-3.2.2 REQUIRED)
  find_program(ICONV iconv REQUIRED)

  set(check ${CMAKE_SOURCE_DIR}/scripts/check-help.sh)
  set(checked ${CMAKE_BINARY_DIR}/help/checked)
  set(compile ${CMAKE_SOURCE_DIR}/cmake/CompileHelp.cmake)
  file(GLOB_RECURSE pages CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/help/*)
  add_custom_command(OUTPUT ${checked}
    COMMAND ${check} ${CMAKE_SOURCE_DIR}
    COMMAND ${CMAKE_COMMAND} -E touch ${checked}
    DEPENDS ${pages} ${check} ${CMAKE_SOURCE_DIR}/src/app/StringIds.h ${CMAKE_SOURCE_DIR}/res/strings_en.rc
            ${CMAKE_SOURCE_DIR}/res/strings_ru.rc ${CMAKE_SOURCE_DIR}/scripts/help-pictures
    COMMENT "Checking the help" VERBATIM)

  set(products "")
  # Folder, name of the product, code page: HTML Help reads contents and index in the ANSI code page of the language.
  foreach(help IN ITEMS "en KelvoEN 1252" "ru Kelvo 1251")
    separate_arguments(help)
    list(POP_FRONT help folder name codepage)
    set(product ${CMAKE_BINARY_DIR}/${name}.chm)
    add_custom_command(OUTPUT ${product}
      COMMAND ${CMAKE_COMMAND} -DSOURCE=${CMAKE_SOURCE_DIR}/help -DFOLDER=${folder} -DNAME=${name} -DCODEPAGE=${codepage}
              -DWORK=${CMAKE_BINARY_DIR}/help/${folder} -DPRODUCT=${product} -DCHMCMD=${CHMCMD} -DCHMLS=${CHMLS}
              -DICONV=${ICONV} -P ${compile}
      DEPENDS ${pages} ${checked} ${compile}
      COMMENT "Compiling ${name}.chm" VERBATIM)
    list(APPEND products ${product})
  endforeach()
  # Plain "help" is a name that CMake keeps for itself.
  add_custom_target(help_files ALL DEPENDS ${products})
endfunction()
