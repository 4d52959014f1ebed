// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_COMMAND_TERMINAL_H
#define TARNVOD_COMMAND_TERMINAL_H

#include "base/output.h"

#include <cstddef>
#include <string>
#include <vector>

namespace tarn::command {

struct TerminalSize {
  std::size_t columns = 80;
  std::size_t rows = 24;
};

/** The size of the terminal behind the descriptor; 80 by 24 if the terminal does not report it. */
TerminalSize terminalSize(int descriptor);

enum class Style { Plain, Bold, Dim, Good, Warning, Bad };

/** A part of a line in one style. */
struct Span {
  std::string text;
  Style style = Style::Plain;
};

using Line = std::vector<Span>;

/** The line as text, cut to `columns`, with or without colours. */
std::string rendered(const Line& line, std::size_t columns, bool coloured);

/** Whether the output is a terminal on which the cursor can be moved. */
bool canRedraw(const Output& output);

/** Whether colours are wanted: on such a terminal, and not with NO_COLOR. */
bool wantsColour(const Output& output);

/**
 * The terminal's alternate screen, redrawn in place. Restores the first screen and the cursor when it is destroyed.
 */
class Screen {
 public:
  explicit Screen(Output& output);
  ~Screen();
  Screen(const Screen&) = delete;
  Screen& operator=(const Screen&) = delete;

  TerminalSize size() const;
  void draw(const std::vector<Line>& lines);

 private:
  Output& output_;
  const bool coloured_;
};

}  // namespace tarn::command

#endif
