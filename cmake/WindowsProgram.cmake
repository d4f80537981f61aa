# What a program for Windows has besides its code.

# add_resources(LIBRARY SCRIPT DEPENDENCY...) compiles res/SCRIPT, which includes the dependencies, into the object library
# LIBRARY.
function(add_resources library script)
  add_library(${library} OBJECT res/${script})
  target_include_directories(${library} PRIVATE src res)
  target_compile_definitions(${library} PRIVATE QUILLON_VERSION_MAJOR=${PROJECT_VERSION_MAJOR}
    QUILLON_VERSION_MINOR=${PROJECT_VERSION_MINOR} QUILLON_VERSION_REVISION=${PROJECT_VERSION_PATCH})
  list(TRANSFORM ARGN PREPEND ${CMAKE_SOURCE_DIR}/)
  set_source_files_properties(res/${script} PROPERTIES OBJECT_DEPENDS "${CMAKE_SOURCE_DIR}/res/version.rc;${ARGN}")
endfunction()

# Moves what only a debugger needs into TARGET.debug: the program starts faster and in less memory without it. The linker
# writes no time into the program; objcopy does unless it is told to preserve the one that it finds.
function(split_symbols target)
  add_custom_command(TARGET ${target} POST_BUILD
    COMMAND ${CMAKE_OBJCOPY} --preserve-dates --only-keep-debug $<TARGET_FILE:${target}> ${target}.debug
    COMMAND ${CMAKE_OBJCOPY} --preserve-dates --strip-all --add-gnu-debuglink=${target}.debug $<TARGET_FILE:${target}>)
endfunction()
