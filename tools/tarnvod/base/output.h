// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_COMMAND_OUTPUT_H
#define TARNVOD_COMMAND_OUTPUT_H

#include <string>
#include <string_view>

namespace tarn::command {

/** A descriptor without a buffer: what is written has reached the reader's pipe, file or terminal. */
class Output {
 public:
  explicit Output(int descriptor) : descriptor_(descriptor) {}

  /**
   * Writes the whole text.
   *
   * @throw OutputClosed  when nobody reads any more, or the command is asked to end while it waits for the reader
   * @throw Failure       when it cannot be written, as on a full disk
   */
  void write(std::string_view text);

  /** Writes text for people: as `write`, but in a locale without UTF-8 all other than ASCII is replaced. */
  void writeText(std::string_view text);

  bool isTerminal() const;

 private:
  int descriptor_;
};

Output& standardOutput();

/** Writes one line of text to standard error. A failure is ignored: there is nowhere to report it. */
void printMessage(const std::string& line);

}  // namespace tarn::command

#endif
