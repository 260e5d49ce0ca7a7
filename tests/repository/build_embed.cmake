cmake_minimum_required(VERSION 3.25)
# Installs the built tree into a fresh prefix, checks which headers lie there, compiles each of them alone, and builds
# and runs examples/embed, all against the installed files and nothing else.
set(prefix ${BUILD}/embed/prefix)
file(REMOVE_RECURSE ${BUILD}/embed)
function(run)
  execute_process(COMMAND ${ARGV} RESULT_VARIABLE result OUTPUT_VARIABLE output ERROR_VARIABLE output)
  if(NOT result EQUAL 0)
    message(FATAL_ERROR "${ARGV}\n${output}")
  endif()
  set(output ${output} PARENT_SCOPE)
endfunction()

run(${CMAKE_COMMAND} --install ${BUILD} --prefix ${prefix})

include(${ROOT}/chalkpane/public_headers.cmake)
file(GLOB_RECURSE installed RELATIVE ${prefix}/include ${prefix}/include/*)
list(SORT installed)
list(SORT chalkpane_public_headers)
if(NOT installed STREQUAL chalkpane_public_headers)
  message(FATAL_ERROR "installed headers: ${installed}\nwanted: ${chalkpane_public_headers}")
endif()

# One source a header, which includes it twice: a header brings what it needs, and only once.
set(sources "")
foreach(header ${installed})
  string(REPLACE / _ source ${header})
  file(WRITE ${BUILD}/embed/headers/${source}.cpp "#include <${header}>\n#include <${header}>\n")
  list(APPEND sources ${source}.cpp)
endforeach()
list(JOIN sources "\n    " sources)
file(WRITE ${BUILD}/embed/headers/CMakeLists.txt "cmake_minimum_required(VERSION 3.25)
project(ChalkpaneHeaders LANGUAGES CXX)
find_package(Chalkpane REQUIRED)
add_library(headers OBJECT
    ${sources})
target_compile_options(headers PRIVATE -O0 -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Werror)
target_link_libraries(headers PRIVATE Chalkpane::engine)
")
run(${CMAKE_COMMAND} -S ${BUILD}/embed/headers -B ${BUILD}/embed/headers/build -G Ninja -DCMAKE_CXX_COMPILER=${CXX}
    -DCMAKE_PREFIX_PATH=${prefix})
run(${CMAKE_COMMAND} --build ${BUILD}/embed/headers/build)

run(${CMAKE_COMMAND} -S ${ROOT}/examples/embed -B ${BUILD}/embed/build -G Ninja -DCMAKE_BUILD_TYPE=Release
    -DCMAKE_CXX_COMPILER=${CXX} -DCMAKE_PREFIX_PATH=${prefix})
run(${CMAKE_COMMAND} --build ${BUILD}/embed/build)
run(${BUILD}/embed/build/embed)
# From (40, 60) to (200, 180) with a brush of radius 5 and dabs at most 1.65 apart: within two pixels of 35, 55 and 205,
# 185. Red over white where the stroke passes, dabs lying so close that little white is left; black where white was
# inverted.
set(wanted "^painted 3[45],5[45] to 20[4-6],18[3-6]
on the stroke: 25[0-5] [0-9]?[0-9] [0-9]?[0-9] 255
beside it: 255 255 255 255
inverted corner: 0 0 0 255
$")
if(NOT output MATCHES "${wanted}")
  message(FATAL_ERROR "embed printed: ${output}")
endif()
file(GLOB_RECURSE modules ${prefix}/*/Chalkpane.qop)
if(NOT modules)
  message(FATAL_ERROR "the module was not installed")
endif()
