# SPDX-FileCopyrightText: 2026 The tarnvod authors
# SPDX-License-Identifier: MIT

# Included by the project when `run` configures it. The tests of the headers of `Camera` and their fixtures become one file, so that
# a mutation there is compiled with little more than itself.
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
cmake_language(DEFER CALL tarnvod_compile_cameras_at_once)
