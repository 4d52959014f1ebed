// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_COMMAND_OUTPUT_H
#define TARNVOD_COMMAND_OUTPUT_H

#include <string>
#include <string_view>

namespace tarn::command {

/** Standard output, without a buffer: what is written has reached the reader's pipe, file or terminal. */
class Output {
 public:
  explicit Output(int descriptor) : descriptor_(descriptor) {}

  /**
   * Writes the whole text.
   *
   * @throw OutputClosed  when nobody reads any more, or the command shall end while the reader keeps it waiting
   * @throw Failure       when it cannot be written, as on a full disk
   */
  void write(std::string_view text);

  bool isTerminal() const;

 private:
  int descriptor_;
};

Output& standardOutput();

/** Writes one line to standard error. What cannot be written there has nowhere else to go. */
void tellUser(const std::string& line);

}  // namespace tarn::command

#endif
