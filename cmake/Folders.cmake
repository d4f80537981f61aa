# The folders of the product from the lowest to the highest. Each line: folder | the folders that it may include besides
# itself, which stand above it here. The libraries are made from this list (FolderLibraries.cmake), and the build fails
# where a file includes what it does not allow (CheckLayers.cmake).
#
# What lies in a folder win/ may know Windows and is compiled for Windows alone; what lies in posix/ stands in for it
# elsewhere. What lies in private/ is included by its own folder alone, and not by that folder's public headers.
set(quillon_folders
  "lib/base|"
  "lib/nsp|base"
  "lib/norvik|base nsp"
  "lib/kvsound|base"
  "src/format|base"
  "src/data|base nsp norvik format"
  "src/view|base nsp norvik format data"
  "src/spectrum|base nsp norvik format data view"
  "src/export|base nsp norvik format data view"
  "src/sound|base norvik kvsound data"
  "src/dialogs|base nsp norvik format data view spectrum export"
  "src/cli|base nsp norvik format data view spectrum export"
  "src/app|base nsp norvik kvsound format data view spectrum export sound dialogs")

# Sets `folder` to the path, `own` to its name and `allowed` to the names of a line of the list.
macro(read_folder_line line)
  string(REGEX MATCH "^([^|]*/([^|]*))\\|(.*)$" matched "${line}")
  set(folder ${CMAKE_MATCH_1})
  set(own ${CMAKE_MATCH_2})
  string(REPLACE " " ";" allowed "${CMAKE_MATCH_3}")
endmacro()
