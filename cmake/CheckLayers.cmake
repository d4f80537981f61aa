cmake_minimum_required(VERSION 3.25)
# Fails when a folder includes one above it. Run with -DROOT=<source folder>.
# Each line: folder | the folders that it may include, itself left out.
set(rules
  "lib/base|"
  "lib/nsp|base"
  "src/format|base nsp"
  "src/data|base nsp format"
  "lib/norvik|base nsp data"
  "src/view|base nsp format data"
  "src/spectrum|base nsp format data view"
  "src/export|base nsp format data view spectrum"
  "src/sound|base nsp format data view"
  "lib/kvsound|base sound"
  "src/dialogs|base nsp format data view spectrum export sound"
  "src/cli|base nsp format data view spectrum export dialogs norvik"
  "src/app|base nsp format data view spectrum export sound dialogs")
set(failed FALSE)
foreach(rule IN LISTS rules)
  string(REGEX REPLACE "\\|.*" "" folder "${rule}")
  string(REGEX REPLACE ".*\\|" "" allowed "${rule}")
  string(REPLACE " " ";" allowed "${allowed}")
  get_filename_component(own ${folder} NAME)
  list(APPEND allowed ${own})
  file(GLOB_RECURSE sources ${ROOT}/${folder}/*.h ${ROOT}/${folder}/*.cpp)
  foreach(source IN LISTS sources)
    # The start-up procedure alone names the substitutes of the libraries.
    set(extra "")
    if(source MATCHES "/app/win/QL_Main\\.cpp$")
      list(APPEND extra kvsound/win/WaveOut.h norvik/OutputFile.h norvik/RecordingLibrary.h norvik/SystemBytes.h
        norvik/TextWriter.h norvik/win/ClipboardWriter.h norvik/win/Registry.h norvik/win/SaveDialog.h norvik/win/Timer.h)
    endif()
    file(STRINGS ${source} includes REGEX "^#include \"")
    foreach(include IN LISTS includes)
      string(REGEX REPLACE "^#include \"([^\"]*)\".*" "\\1" path "${include}")
      string(REGEX REPLACE "/.*" "" target "${path}")
      if(NOT target IN_LIST allowed AND NOT path IN_LIST extra)
        message("${source}: may not include \"${path}\"")
        set(failed TRUE)
      endif()
      if(path MATCHES "/win/" AND NOT source MATCHES "/win/")
        message("${source}: only files in a win folder may include \"${path}\"")
        set(failed TRUE)
      endif()
    endforeach()
  endforeach()
endforeach()
if(failed)
  message(FATAL_ERROR "The layering of CONTRIBUTING.md is broken.")
endif()
