# Import libraries for DLLs that are loaded when a function of theirs is first called. A DLL that is named in the
# program's import table is loaded, along with those that it needs itself, before the program's first line, and the
# first waveform needs none of these. Loaded by name alone, such a DLL would be taken from the program's folder first: see
# LoadSystemDllsOnly in src/app/win/SystemDlls.h.
#
# delay_load(TARGET DLL FUNCTION...) makes the library TARGET out of the functions that the program calls.
function(delay_load target dll)
  string(REPLACE ";" "\n" functions "${ARGN}")
  set(definition ${CMAKE_CURRENT_BINARY_DIR}/${target}.def)
  set(archive ${CMAKE_CURRENT_BINARY_DIR}/lib${target}.a)
  file(CONFIGURE OUTPUT ${definition} CONTENT "LIBRARY ${dll}\nEXPORTS\n${functions}\n")
  # Names of symbols are made from the names given here: with a folder in them they would differ from build to build.
  add_custom_command(OUTPUT ${archive} DEPENDS ${definition} VERBATIM WORKING_DIRECTORY ${CMAKE_CURRENT_BINARY_DIR}
    COMMAND ${CMAKE_DLLTOOL} --input-def ${target}.def --output-delaylib lib${target}.a)
  add_custom_target(${target}_archive DEPENDS ${archive})
  add_library(${target} STATIC IMPORTED GLOBAL)
  set_target_properties(${target} PROPERTIES IMPORTED_LOCATION ${archive})
  add_dependencies(${target} ${target}_archive)
endfunction()

delay_load(delayed_comctl32 comctl32.dll DefSubclassProc ImageList_Add ImageList_Create ImageList_Destroy ImageList_Draw
  ImageList_GetImageCount InitCommonControlsEx RemoveWindowSubclass SetWindowSubclass)
delay_load(delayed_comdlg32 comdlg32.dll CommDlgExtendedError GetOpenFileNameW GetSaveFileNameW PrintDlgW)
delay_load(delayed_shell32 shell32.dll DragAcceptFiles DragFinish DragQueryFileW SHFileOperationA SHFileOperationW
  SHGetFolderPathW)
delay_load(delayed_uxtheme uxtheme.dll DrawThemeParentBackground EnableThemeDialogTexture)
delay_load(delayed_winmm winmm.dll waveOutClose waveOutGetDevCapsW waveOutGetErrorTextW waveOutGetNumDevs
  waveOutGetPosition waveOutOpen waveOutPause waveOutPrepareHeader waveOutReset waveOutRestart waveOutUnprepareHeader
  waveOutWrite)

# The compiler links some of these DLLs by itself: a function that is left out above is taken from there unnoticed. So
# the program's import table is looked at. Further arguments are names of DLLs that it may not hold either.
function(check_imports target)
  string(REPLACE ";" "|" unwanted "comctl32;comdlg32;shell32;uxtheme;winmm;${ARGN}")
  add_custom_command(TARGET ${target} POST_BUILD VERBATIM
    COMMAND ${CMAKE_COMMAND} -DOBJDUMP=${CMAKE_OBJDUMP} -DPROGRAM=$<TARGET_FILE:${target}> -DUNWANTED=${unwanted}
      -P ${CMAKE_SOURCE_DIR}/cmake/CheckImports.cmake)
endfunction()
