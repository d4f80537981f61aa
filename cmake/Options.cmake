# What every target is compiled with.
add_library(quillon_options INTERFACE)
target_include_directories(quillon_options INTERFACE ${CMAKE_SOURCE_DIR}/src ${CMAKE_SOURCE_DIR}/lib)
target_compile_features(quillon_options INTERFACE cxx_std_20)
target_compile_definitions(quillon_options INTERFACE _GLIBCXX_ASSERTIONS
  QUILLON_VERSION_MAJOR=${PROJECT_VERSION_MAJOR} QUILLON_VERSION_MINOR=${PROJECT_VERSION_MINOR} QUILLON_VERSION_REVISION=${PROJECT_VERSION_PATCH})
if(QUILLON_COVERAGE)
  # Where the sources are, the counting has to know.
  target_compile_options(quillon_options INTERFACE --coverage)
  target_link_options(quillon_options INTERFACE --coverage)
else()
  # Debug information and asserts name no folder of this machine: a build in another folder gives the same files.
  target_compile_options(quillon_options INTERFACE -ffile-prefix-map=${CMAKE_SOURCE_DIR}=.)
endif()
target_compile_options(quillon_options INTERFACE -Werror -Wall -Wextra -Wpedantic -Wconversion -Wsign-conversion -Wshadow
  -Wold-style-cast -Wnon-virtual-dtor -Woverloaded-virtual -Wnull-dereference -Wimplicit-fallthrough -Wundef -ffp-contract=off)
if(WIN32)
  target_compile_definitions(quillon_options INTERFACE UNICODE _UNICODE STRICT NOMINMAX WIN32_LEAN_AND_MEAN _WIN32_WINNT=0x0601)
  # The debugger of Wine 8 reads DWARF 4. Where tests are built, lines are enough, in two thirds of the time.
  target_compile_options(quillon_options INTERFACE -gdwarf-4 -g$<$<BOOL:${QUILLON_TESTS}>:1>)
endif()
if(CMAKE_BUILD_TYPE STREQUAL "Release" AND CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  # When it optimises, GCC 12 warns of these inside its own library headers.
  target_compile_options(quillon_options INTERFACE -Wno-null-dereference -Wno-restrict)
  if(CMAKE_UNITY_BUILD)
    # The same of precompiled headers.
    target_compile_options(quillon_options INTERFACE -Wno-array-bounds -Wno-stringop-overflow -Wno-stringop-overread)
  endif()
endif()
if(CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
  target_compile_options(quillon_options INTERFACE -Wno-unknown-warning-option)
endif()
if(QUILLON_SANITIZE)
  # Lines are all that a sanitizer's report names; more debug information costs a quarter of the build.
  # What null pointers and too small objects do the address sanitizer finds alone (the fuzzers have both): the other would
  # cost a quarter of the build, a third where it looks at the tests' own pointers too.
  target_compile_options(quillon_options INTERFACE -g1 -fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer
    -fno-sanitize=null,object-size $<$<BOOL:$<TARGET_PROPERTY:QUILLON_IS_TEST>>:-fno-sanitize=alignment,vptr>
    $<$<NOT:$<BOOL:$<TARGET_PROPERTY:QUILLON_IS_TEST>>>:-O1>)
  target_link_options(quillon_options INTERFACE -fsanitize=address,undefined)
endif()
if(QUILLON_FUZZ)
  target_compile_options(quillon_options INTERFACE -O1 -fsanitize=fuzzer-no-link,address,undefined -fno-sanitize-recover=all)
  target_link_options(quillon_options INTERFACE -fsanitize=address,undefined)
endif()
