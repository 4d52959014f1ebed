# SPDX-FileCopyrightText: 2026 The tarnvod authors
# SPDX-License-Identifier: MIT

# Included by the project when `run` configures it. The headers of `Camera` are mutated in a copy, `mutated/include`, which one small
# file includes. Its functions come first in the programs and so replace those of the tests, which need not be compiled again.
set(TARNVOD_MUTATED_INCLUDE "${CMAKE_SOURCE_DIR}/mutated/include")

# The tests of `Camera` and their fixtures become one file, which is compiled faster than all of them.
function(tarnvod_compile_cameras_at_once)
  foreach(fixture IN ITEMS camera_test handler_test)
    get_target_property(sources ${fixture} SOURCES)
    get_target_property(folder ${fixture} SOURCE_DIR)
    list(TRANSFORM sources PREPEND "${folder}/")
    target_sources(test_camera PRIVATE ${sources})
  endforeach()
  get_target_property(libraries test_camera LINK_LIBRARIES)
  list(REMOVE_ITEM libraries camera_test)
  set_target_properties(test_camera PROPERTIES LINK_LIBRARIES "${libraries};tarnvod::tarnvod"
    UNITY_BUILD ON UNITY_BUILD_BATCH_SIZE 0)
  target_include_directories(test_camera PRIVATE "${PROJECT_SOURCE_DIR}/tests")
  target_precompile_headers(test_camera PRIVATE
    <gmock/gmock.h> <gtest/gtest.h> <tarnvod/video_object_detection.pb.h> <vod_host.h> <regex> <sstream> <random> <thread>)
endfunction()

function(tarnvod_replace_cameras)
  add_library(mutated_cameras OBJECT "${PROJECT_SOURCE_DIR}/tests/endurance/mutation/cameras.cpp")
  target_include_directories(mutated_cameras PRIVATE "${TARNVOD_MUTATED_INCLUDE}" "${PROJECT_SOURCE_DIR}/tests")
  target_link_libraries(mutated_cameras PRIVATE tarnvod::tarnvod)
  foreach(program IN ITEMS test_camera test_camera_memory)
    target_sources(${program} PRIVATE $<TARGET_OBJECTS:mutated_cameras>)
  endforeach()
  target_include_directories(interleavings_camera_worlds BEFORE PRIVATE "${TARNVOD_MUTATED_INCLUDE}")
endfunction()

cmake_language(DEFER CALL tarnvod_compile_cameras_at_once)
cmake_language(DEFER CALL tarnvod_replace_cameras)
