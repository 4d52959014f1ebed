# SPDX-FileCopyrightText: 2026 The tarnvod authors
# SPDX-License-Identifier: MIT

# Sets TARNVOD_MESSAGE_SCHEMA to a source file that the build makes: the schema of the messages, as protoc describes it.
set(schema_writer "${CMAKE_CURRENT_SOURCE_DIR}/recordings/exports/write_schema.cmake")
set(schema_descriptors "${CMAKE_CURRENT_BINARY_DIR}/message_schema.pb")
set(TARNVOD_MESSAGE_SCHEMA "${CMAKE_CURRENT_BINARY_DIR}/message_schema.cpp")

add_custom_command(
  OUTPUT "${TARNVOD_MESSAGE_SCHEMA}"
  COMMAND protobuf::protoc "--descriptor_set_out=${schema_descriptors}" "--proto_path=${TARNVOD_SCHEMA_DIR}"
          video_object_detection.proto
  COMMAND "${CMAKE_COMMAND}" -D "input=${schema_descriptors}" -D "output=${TARNVOD_MESSAGE_SCHEMA}" -P "${schema_writer}"
  DEPENDS "${TARNVOD_SCHEMA_DIR}/video_object_detection.proto" "${schema_writer}" protobuf::protoc
  COMMENT "Describing the schema of the messages"
  VERBATIM)
