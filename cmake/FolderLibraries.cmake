# One library for each folder of Folders.cmake: quillon_base, quillon_nsp, ... Entry points of programs are left out.
include(cmake/Folders.cmake)
set(cli_entry src/cli/posix/main.cpp)
set(other_system win)
if(WIN32)
  set(cli_entry src/cli/win/main.cpp)
  set(other_system posix)
endif()
set(app_entry src/app/win/WinMain.cpp)

set(listed "")
foreach(line IN LISTS quillon_folders)
  read_folder_line("${line}")
  foreach(lower IN LISTS allowed)
    if(NOT TARGET quillon_${lower})
      message(FATAL_ERROR "cmake/Folders.cmake: ${folder} may not include ${lower}, which does not stand above it")
    endif()
  endforeach()
  list(APPEND listed ${folder})

  file(GLOB_RECURSE sources RELATIVE ${CMAKE_SOURCE_DIR} CONFIGURE_DEPENDS ${folder}/*.cpp)
  list(FILTER sources EXCLUDE REGEX "/${other_system}/")
  list(REMOVE_ITEM sources ${cli_entry} ${app_entry})
  if(WIN32)
    # Never compiled as one: a program would load every library of the system that any of its neighbours needs.
    set(system_sources ${sources})
    list(FILTER system_sources INCLUDE REGEX "/win/")
    set_source_files_properties(${system_sources} PROPERTIES SKIP_UNITY_BUILD_INCLUSION ON)
  endif()

  list(TRANSFORM allowed PREPEND quillon_)
  if(sources)
    add_library(quillon_${own} STATIC ${sources})
    target_link_libraries(quillon_${own} PUBLIC quillon_options ${allowed})
    add_dependencies(quillon_${own} check_layers)
    # Where several files are compiled as one (see test.sh), the largest headers are read once too. Other builds, which
    # scripts/check makes, show that every file includes what it needs.
    if(CMAKE_UNITY_BUILD AND own STREQUAL "base")
      target_precompile_headers(quillon_base PRIVATE <algorithm> <array> <charconv> <cmath> <functional> <memory> <optional>
        <span> <string> <system_error> <utility> <vector>)
    elseif(CMAKE_UNITY_BUILD)
      target_precompile_headers(quillon_${own} REUSE_FROM quillon_base)
    endif()
  else()
    add_library(quillon_${own} INTERFACE)
    target_link_libraries(quillon_${own} INTERFACE quillon_options ${allowed})
  endif()
endforeach()

file(GLOB folders RELATIVE ${CMAKE_SOURCE_DIR} CONFIGURE_DEPENDS lib/* src/*)
list(REMOVE_ITEM folders ${listed})
if(folders)
  message(FATAL_ERROR "Not in cmake/Folders.cmake: ${folders}")
endif()

# Where several files are compiled as one (see test.sh): it opens a namespace whose names another dialog has too.
set_source_files_properties(src/dialogs/SplitTemplate.cpp PROPERTIES SKIP_UNITY_BUILD_INCLUSION ON)

# Before anything is compiled.
file(GLOB_RECURSE checked_sources CONFIGURE_DEPENDS lib/*.h lib/*.cpp src/*.h src/*.cpp)
add_custom_command(OUTPUT layers_checked VERBATIM
  COMMAND ${CMAKE_COMMAND} -DROOT=${CMAKE_SOURCE_DIR} -P ${CMAKE_SOURCE_DIR}/cmake/CheckLayers.cmake
  COMMAND ${CMAKE_COMMAND} -E touch layers_checked
  DEPENDS ${checked_sources} cmake/CheckLayers.cmake cmake/Folders.cmake
  COMMENT "Checking what the folders include")
add_custom_target(check_layers ALL DEPENDS layers_checked)

# On 64-bit Windows, GCC takes the stack for aligned to 32 bytes where it is only to 16: no moves that need alignment.
if(WIN32)
  set_property(SOURCE lib/nsp/kernels/Kernels16.cpp lib/nsp/kernels/Sections4.cpp APPEND PROPERTY COMPILE_OPTIONS -Wa,-muse-unaligned-vector-move)
endif()

# What the parts in win/ call of Windows beyond what the compiler links by itself.
if(WIN32)
  include(cmake/DelayLoad.cmake)
  target_link_libraries(quillon_base PUBLIC gdi32)
  target_link_libraries(quillon_norvik PUBLIC delayed_comdlg32)
  target_link_libraries(quillon_kvsound PUBLIC delayed_winmm)
  target_link_libraries(quillon_data PUBLIC delayed_comctl32 delayed_shell32)
  target_link_libraries(quillon_dialogs PUBLIC delayed_comctl32 delayed_uxtheme)
  target_link_libraries(quillon_app PUBLIC delayed_comctl32 delayed_comdlg32 delayed_shell32)
endif()
