# Shows that the check finds what it is there for: in a small tree below SCRATCH, one file for each pair of rooms includes
# from the one to the other, and exactly the forbidden ones must be reported.
cmake_minimum_required(VERSION 3.25)
include(${CMAKE_CURRENT_LIST_DIR}/include_rules.cmake)

function(expect_failures what)
  check_includes(${SCRATCH} failures count)
  set(wanted ${ARGN})
  list(SORT failures)
  list(SORT wanted)
  if(NOT failures STREQUAL wanted)
    list(JOIN failures "\n  " failures)
    list(JOIN wanted "\n  " wanted)
    message(FATAL_ERROR "${what}\nreported:\n  ${failures}\nwanted:\n  ${wanted}")
  endif()
  file(REMOVE_RECURSE ${SCRATCH})
endfunction()

file(REMOVE_RECURSE ${SCRATCH})
set(forbidden "")
set(pairs 0)
foreach(from ${rooms})
  file(WRITE ${SCRATCH}/${from}/leaf.h "")
  foreach(to ${rooms})
    string(MAKE_C_IDENTIFIER ${to} name)
    file(WRITE ${SCRATCH}/${from}/to_${name}.h "#include \"${to}/leaf.h\"\n")
    math(EXPR pairs "${pairs} + 1")
    if(NOT to IN_LIST known_to_${from})
      list(APPEND forbidden "${from}/to_${name}.h: ${from} may not include ${to}/leaf.h")
    endif()
  endforeach()
endforeach()
list(LENGTH forbidden forbidden_count)

# The table itself could be wrong, so its corners are stated once more, by hand: the rooms of the library in their line,
# where each of the 7 * 6 / 2 = 21 includes upwards is forbidden, and who must not hear of whom.
set(line base image parameters transform filters composite brush)
while(line)
  list(POP_FRONT line lower)
  foreach(upper ${line})
    list(APPEND corners "chalkpane/${lower}>chalkpane/${upper}")
  endforeach()
endwhile()
list(LENGTH corners upward)
if(NOT upward EQUAL 21)
  message(FATAL_ERROR "the line of the library has ${upward} includes upwards, not 21")
endif()
list(APPEND corners "chalkpane/brush>telestrator" "chalkpane/brush>module/abi" "telestrator>module" "telestrator>module/abi"
     "telestrator>cli" "module/abi>chalkpane/base" "module>kel/scene" "module>cli" "cli>picture_io" "picture_io>kel/video"
     "kel/scene>module" "kel/scene>telestrator" "kel/window>module" "kel/workspace>kel/window" "kel/session>kel/workspace"
     "kel/window>apps/kel" "apps/kel>apps/chalkpane" "apps/chalkpane>module" "chalkpane/base>tests")
foreach(corner ${corners})
  string(REGEX MATCH "^(.+)>(.+)$" corner ${corner})
  if(CMAKE_MATCH_2 IN_LIST known_to_${CMAKE_MATCH_1})
    message(FATAL_ERROR "the table lets ${CMAKE_MATCH_1} include ${CMAKE_MATCH_2}")
  endif()
endforeach()
expect_failures("each pair of rooms" ${forbidden})

# A library from outside, in each room of the standard library's.
set(wanted "")
foreach(room ${rooms})
  file(WRITE ${SCRATCH}/${room}/a.h "#include <vector>\n#include <immintrin.h>\n#include <SDL2/SDL.h>\n")
  if(standard_${room})
    list(APPEND wanted "${room}/a.h: ${room} may not include <SDL2/SDL.h>, only the standard library")
  endif()
endforeach()
expect_failures("a library from outside" ${wanted})

# The C library's threads, everywhere but in the base that runs them.
set(wanted "")
foreach(room ${rooms})
  file(WRITE ${SCRATCH}/${room}/a.h "#include <pthread.h>\n")
  if(standard_${room} AND NOT room STREQUAL "chalkpane/base")
    list(APPEND wanted "${room}/a.h: ${room} may not include <pthread.h>, only the standard library")
  endif()
endforeach()
expect_failures("the C library's threads" ${wanted})

file(WRITE ${SCRATCH}/cli/a.h "#include \"cli/b.h\"\n")
file(WRITE ${SCRATCH}/cli/b.h "#include \"cli/a.h\"\n")
file(WRITE ${SCRATCH}/cli/c.h "")
expect_failures("a circle" "an include circle among: cli/a.h, cli/b.h")

file(WRITE ${SCRATCH}/cli/a.h "#include \"b.h\"\n")
file(WRITE ${SCRATCH}/cli/b.h "")
expect_failures("a path that does not begin at the root" "cli/a.h: \"b.h\" is not a path from the root"
                "an include circle among: cli/a.h")

file(WRITE ${SCRATCH}/kel/a.h "")
file(WRITE ${SCRATCH}/chalkpane/new/a.cpp "")
expect_failures("a file outside all rooms"
                "chalkpane/new/a.cpp: lies in no room of tests/repository/include_rules.cmake"
                "kel/a.h: lies in no room of tests/repository/include_rules.cmake")
message("${pairs} pairs of rooms tried, ${forbidden_count} of them forbidden")
