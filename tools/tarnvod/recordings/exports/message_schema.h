// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_COMMAND_MESSAGE_SCHEMA_H
#define TARNVOD_COMMAND_MESSAGE_SCHEMA_H

#include <string_view>

namespace tarn::command {

/** The schema of the messages, as a serialized `google.protobuf.FileDescriptorSet`; the build makes it. */
std::string_view messageSchema();

}  // namespace tarn::command

#endif
