# Holds the tree below ROOT to the line of its rooms.
cmake_minimum_required(VERSION 3.25)
include(${CMAKE_CURRENT_LIST_DIR}/include_rules.cmake)

check_includes(${ROOT} failures count)
if(count EQUAL 0)
  message(FATAL_ERROR "no sources under ${ROOT}")
endif()
if(failures)
  list(JOIN failures "\n" text)
  message(FATAL_ERROR "${text}")
endif()
message("${count} files, no forbidden include, no circle")
