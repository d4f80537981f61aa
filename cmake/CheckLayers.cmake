cmake_minimum_required(VERSION 3.25)
# Fails when a folder includes one above it. Run with -DROOT=<source folder>.
# Each line: folder | the folders that it may include, itself left out.
set(rules
  "lib/base|"
  "lib/nsp|base"
  "lib/norvik|base nsp"
  "lib/kvsound|base"
  "src/format|base"
  "src/data|base nsp norvik"
  "src/view|base nsp norvik format data"
  "src/spectrum|base nsp norvik format data view"
  "src/export|base norvik format data view"
  "src/sound|base norvik kvsound data"
  "src/dialogs|base norvik format data view spectrum export"
  "src/cli|base norvik format data view spectrum export"
  "src/app|base norvik kvsound format data view spectrum export sound dialogs")
set(failed FALSE)
foreach(rule IN LISTS rules)
  string(REGEX REPLACE "\\|.*" "" folder "${rule}")
  string(REGEX REPLACE ".*\\|" "" allowed "${rule}")
  string(REPLACE " " ";" allowed "${allowed}")
  get_filename_component(own ${folder} NAME)
  list(APPEND allowed ${own})
  file(GLOB_RECURSE sources ${ROOT}/${folder}/*.h ${ROOT}/${folder}/*.cpp)
  foreach(source IN LISTS sources)
    file(STRINGS ${source} includes REGEX "^#include \"")
    foreach(include IN LISTS includes)
      string(REGEX REPLACE "^#include \"([^\"]*)\".*" "\\1" path "${include}")
      string(REGEX REPLACE "/.*" "" target "${path}")
      if(NOT target IN_LIST allowed)
        message("${source}: may not include \"${path}\"")
        set(failed TRUE)
      endif()
      if(path MATCHES "/private/" AND (NOT target STREQUAL own OR source MATCHES "\\.h$" AND NOT source MATCHES "/private/"))
        message("${source}: \"${path}\" is private to the library")
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
