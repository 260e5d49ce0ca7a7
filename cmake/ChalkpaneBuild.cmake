# How everything here is compiled, and the shapes that several folders share.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
if(NOT CMAKE_BUILD_TYPE)
  set(CMAKE_BUILD_TYPE Release)
endif()
find_package(Threads REQUIRED)

# The arithmetic is part of the product: no fused multiply-add, no fast-math. GCC at -O2 does not vectorise loops of
# unknown length, so optimised builds take -O3. Sanitizers want little optimisation and line numbers only.
set(CMAKE_CXX_FLAGS_RELEASE "-O3 -DNDEBUG")
set(CMAKE_CXX_FLAGS_SANITIZE "-O1 -g1")
add_library(chalkpane_flags INTERFACE)
target_compile_options(chalkpane_flags INTERFACE -Wall -Wextra -Wpedantic -Wshadow -Wconversion -ffp-contract=off)
# g++ 12 wrongly suspects plain assignments of literals to strings (its bug 105651, mended in 13).
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
  target_compile_options(chalkpane_flags INTERFACE -Wno-restrict)
endif()
target_include_directories(chalkpane_flags INTERFACE $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}>)
target_link_libraries(chalkpane_flags INTERFACE Threads::Threads)
if(CHALKPANE_SANITIZE)
  target_compile_options(chalkpane_flags INTERFACE -fsanitize=${CHALKPANE_SANITIZE} -fno-sanitize-recover=all
                                                   -fno-omit-frame-pointer)
  target_link_options(chalkpane_flags INTERFACE -fsanitize=${CHALKPANE_SANITIZE})
  # Among the sanitizers' checks g++ takes the functions that std::regex moves about for uninitialised.
  if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    target_compile_options(chalkpane_flags INTERFACE -Wno-maybe-uninitialized)
  endif()
endif()

# The arithmetic of the product once more: g++ 12 at -O2 and above, where it makes one vector of two neighbouring
# statements, can leave out the narrowing in double(float(x)). No place is known to be hit; this keeps it so.
function(chalkpane_keep_narrowings target)
  target_compile_options(${target} PRIVATE $<$<CXX_COMPILER_ID:GNU>:-fno-tree-slp-vectorize>)
endfunction()

# For what reads files: the fuzz targets see which of its branches a unit takes. Pixel loops would only be slower by it.
#   chalkpane_watch_branches(target [those of its sources that read; all of them])
function(chalkpane_watch_branches target)
  if(NOT CHALKPANE_BUILD_FUZZ)
    return()
  endif()
  if(ARGN)
    set_property(SOURCE ${ARGN} APPEND PROPERTY COMPILE_OPTIONS -fsanitize=fuzzer-no-link)
  else()
    target_compile_options(${target} PRIVATE -fsanitize=fuzzer-no-link)
  endif()
endfunction()

# For what spends its time elsewhere, such as tests and the reading of command lines: it is rather built soon than fast.
# Among the checks of the sanitizers, optimisation takes clang++ twice as long as all the rest.
set(chalkpane_soon $<$<CONFIG:Release>:-O1> $<$<CONFIG:Sanitize>:-O0>)
function(chalkpane_build_soon target)
  target_compile_options(${target} PRIVATE ${chalkpane_soon})
endfunction()

# The files of a folder are compiled as one: headers and templates then cost once a folder, not once a file, and a new
# clone is built in two thirds of the time. So what two files of a folder keep to themselves has two names, or one of them
# is compiled ALONE. What is measured for its speed, or linked in part, is compiled so only under SANITIZERS. With
# CHALKPANE_EACH_FILE each file is compiled for itself, which shows that it includes what it needs, as clang-tidy reads it,
# and is sooner done when one is changed.
#   chalkpane_compile_by_folder(chalkpane_engine [SANITIZERS] [ALONE files])
function(chalkpane_compile_by_folder target)
  cmake_parse_arguments(PARSE_ARGV 1 arg "SANITIZERS" "" "ALONE")
  if(CHALKPANE_EACH_FILE OR (arg_SANITIZERS AND NOT CHALKPANE_SANITIZE))
    return()
  endif()
  get_target_property(sources ${target} SOURCES)
  list(FILTER sources INCLUDE REGEX "^/.*[.]cpp$")
  foreach(source ${sources})
    cmake_path(GET source PARENT_PATH folder)
    set_source_files_properties(${source} PROPERTIES UNITY_GROUP ${folder})
  endforeach()
  set_source_files_properties(${arg_ALONE} PROPERTIES SKIP_UNITY_BUILD_INCLUSION ON)
  set_target_properties(${target} PROPERTIES UNITY_BUILD ON UNITY_BUILD_MODE GROUP)
  # g++ takes the unnamed namespaces of included files for those of headers.
  target_compile_options(${target} PRIVATE $<$<CXX_COMPILER_ID:GNU>:-Wno-subobject-linkage>)
endfunction()

# The test programs that `./test quick` runs, and all programs that the guides use, as `./run` builds them.
add_custom_target(quick_tests)
add_custom_target(programs)

# The test of that name once more, without the forms for wider registers.
function(chalkpane_test_plain name)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "ARGUMENTS")
  add_test(NAME ${name}_plain COMMAND ${name}_test ${arg_ARGUMENTS})
  set_tests_properties(${name}_plain PROPERTIES TIMEOUT 1500 ENVIRONMENT CHALKPANE_CPU_FEATURES=plain)
endfunction()

# One test program per subsystem: every source of the folder, or of those named below it and its own, run by CTest under
# the name. `./test quick` runs it too, unless it is SLOW: takes more than some ten seconds, or needs much else built.
# One that works out many PIXELS itself, to compare with, is optimised under the sanitizers too. The SECONDS that it takes
# under those, where they are many, let the longest begin first, so that none runs on alone.
# One that reads much JSON is compiled BY_FOLDER, whose parser takes longer than all else, but for the sources that are
# ALONE.
#   chalkpane_test(image LIBRARIES chalkpane_engine [FOLDERS those] [SOURCES more.cpp] [ARGUMENTS for the program] [SLOW]
#                  [PIXELS] [SECONDS 60] [BY_FOLDER [ALONE files]])
function(chalkpane_test name)
  cmake_parse_arguments(PARSE_ARGV 1 arg "SLOW;PIXELS;BY_FOLDER" "SECONDS" "LIBRARIES;FOLDERS;SOURCES;ARGUMENTS;ALONE")
  if(arg_FOLDERS)
    list(TRANSFORM arg_FOLDERS PREPEND ${CMAKE_CURRENT_SOURCE_DIR}/)
    list(TRANSFORM arg_FOLDERS APPEND /*.cpp)
    file(GLOB sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/*.cpp ${arg_FOLDERS})
  else()
    file(GLOB_RECURSE sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/*.cpp)
  endif()
  add_executable(${name}_test ${sources} ${arg_SOURCES} $<TARGET_OBJECTS:no_tests>)
  target_link_libraries(${name}_test PRIVATE chalkpane_flags ${arg_LIBRARIES} doctest::doctest)
  if(arg_PIXELS)
    target_compile_options(${name}_test PRIVATE $<$<CONFIG:Release>:-O1>)
  else()
    chalkpane_build_soon(${name}_test)
    # Headers that are read beforehand have to be compiled alike.
    if(NOT CHALKPANE_EACH_FILE)
      target_precompile_headers(${name}_test REUSE_FROM no_tests)
    endif()
  endif()
  if(arg_BY_FOLDER)
    chalkpane_compile_by_folder(${name}_test ALONE ${arg_ALONE})
  endif()
  add_test(NAME ${name} COMMAND ${name}_test ${arg_ARGUMENTS})
  set_tests_properties(${name} PROPERTIES TIMEOUT 1500)
  if(arg_SECONDS)
    set_tests_properties(${name} PROPERTIES COST ${arg_SECONDS})
  endif()
  if(NOT arg_SLOW)
    set_tests_properties(${name} PROPERTIES LABELS quick)
    add_dependencies(quick_tests ${name}_test)
  endif()
endfunction()
