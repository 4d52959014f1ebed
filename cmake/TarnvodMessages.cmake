# SPDX-FileCopyrightText: 2026 The tarnvod authors
# SPDX-License-Identifier: MIT

include(TarnvodProtobuf)
if(NOT Protobuf_FOUND)
  message(FATAL_ERROR "Protocol Buffers were not found: install the library's development files and its compiler, protoc.")
endif()

# The message classes are generated once, under the name by which applications include them, and compiled by whoever
# needs a copy: the library (which exports them) and the host platform (which keeps its own to itself).
set(TARNVOD_SCHEMA_DIR "${CMAKE_CURRENT_SOURCE_DIR}/src/video-object-detection")
set(TARNVOD_GENERATED_INCLUDE_DIR "${CMAKE_CURRENT_BINARY_DIR}/generated")
set(TARNVOD_MESSAGES_HEADER "${TARNVOD_GENERATED_INCLUDE_DIR}/tarnvod/video_object_detection.pb.h")
set(TARNVOD_MESSAGES_SOURCE "${TARNVOD_GENERATED_INCLUDE_DIR}/tarnvod/video_object_detection.pb.cc")
set(TARNVOD_MARK_FRAME_FUNCTIONS "${CMAKE_CURRENT_LIST_DIR}/mark_frame_functions.cmake")

file(MAKE_DIRECTORY "${TARNVOD_GENERATED_INCLUDE_DIR}/tarnvod")
add_custom_command(
  OUTPUT "${TARNVOD_MESSAGES_HEADER}" "${TARNVOD_MESSAGES_SOURCE}"
  COMMAND protobuf::protoc "--cpp_out=${TARNVOD_GENERATED_INCLUDE_DIR}/tarnvod" "--proto_path=${TARNVOD_SCHEMA_DIR}"
          video_object_detection.proto
  COMMAND ${CMAKE_COMMAND} "-DSOURCE=${TARNVOD_MESSAGES_SOURCE}" -P "${TARNVOD_MARK_FRAME_FUNCTIONS}"
  DEPENDS "${TARNVOD_SCHEMA_DIR}/video_object_detection.proto" protobuf::protoc "${TARNVOD_MARK_FRAME_FUNCTIONS}"
  COMMENT "Generating the message classes"
  VERBATIM)
add_custom_target(tarnvod_generate_messages DEPENDS "${TARNVOD_MESSAGES_HEADER}" "${TARNVOD_MESSAGES_SOURCE}")

# tarnvod_add_messages(NAME VISIBILITY): an object library of the generated classes, with default or hidden visibility.
# Inline functions are always hidden: whoever uses them compiles a copy.
function(tarnvod_add_messages name visibility)
  add_library(${name} OBJECT "${TARNVOD_MESSAGES_SOURCE}" "${TARNVOD_MESSAGES_HEADER}")
  add_dependencies(${name} tarnvod_generate_messages)
  set_target_properties(${name} PROPERTIES
    POSITION_INDEPENDENT_CODE ON CXX_VISIBILITY_PRESET ${visibility} VISIBILITY_INLINES_HIDDEN ON)
  tarnvod_messages_footprint(${name})
  target_include_directories(${name} SYSTEM PUBLIC "$<BUILD_INTERFACE:${TARNVOD_GENERATED_INCLUDE_DIR}>")
  target_link_libraries(${name} PUBLIC protobuf::libprotobuf-lite)
endfunction()
