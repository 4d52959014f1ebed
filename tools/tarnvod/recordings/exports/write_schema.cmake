# SPDX-FileCopyrightText: 2026 The tarnvod authors
# SPDX-License-Identifier: MIT

# Run by the build: writes the file `input` as the text that messageSchema() returns to the source file `output`.
file(READ "${input}" bytes HEX)
string(REGEX REPLACE "(..)" "0x\\1," numbers "${bytes}")
file(WRITE "${output}" "#include \"recordings/exports/message_schema.h\"

namespace tarn::command {

std::string_view messageSchema() {
  static constexpr unsigned char bytes[] = {${numbers}};
  return {reinterpret_cast<const char*>(bytes), sizeof(bytes)};
}

}  // namespace tarn::command
")
