// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "base/terminal.h"

#include "base/errors.h"
#include "base/text.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <string_view>

namespace tarn::command {
namespace {

constexpr std::string_view enterScreen = "\x1b[?1049h\x1b[?25l\x1b[?7l";
constexpr std::string_view leaveScreen = "\x1b[?7h\x1b[?25h\x1b[?1049l";
constexpr std::string_view home = "\x1b[H";
constexpr std::string_view clearLine = "\x1b[K";
constexpr std::string_view clearBelow = "\r\n\x1b[J";
constexpr std::string_view plain = "\x1b[0m";

std::string_view escapeOf(Style style) {
  switch (style) {
    case Style::Bold:
      return "\x1b[1m";
    case Style::Dim:
      return "\x1b[2m";
    case Style::Good:
      return "\x1b[32m";
    case Style::Warning:
      return "\x1b[33m";
    case Style::Bad:
      return "\x1b[1;31m";
    case Style::Plain:
      break;
  }
  return "";
}

}  // namespace

TerminalSize terminalSize(int descriptor) {
  winsize size{};
  if (ioctl(descriptor, TIOCGWINSZ, &size) != 0 || size.ws_col == 0 || size.ws_row == 0) {
    return {};
  }
  return {size.ws_col, size.ws_row};
}

std::string rendered(const Line& line, std::size_t columns, bool coloured) {
  std::string result;
  for (const Span& span : line) {
    const std::string text = cut(span.text, columns);
    columns -= displayWidth(text);
    const bool isStyled = coloured && span.style != Style::Plain;
    result += isStyled ? std::string(escapeOf(span.style)) + text + std::string(plain) : text;
  }
  return result;
}

bool canRedraw(const Output& output) {
  const char* const terminal = std::getenv("TERM");  // NOLINT(concurrency-mt-unsafe): nobody changes the environment
  return output.isTerminal() && terminal != nullptr && std::string_view(terminal) != "dumb";
}

bool wantsColour(const Output& output) {
  const char* const refused = std::getenv("NO_COLOR");  // NOLINT(concurrency-mt-unsafe): as above
  return canRedraw(output) && (refused == nullptr || *refused == '\0');
}

Screen::Screen(Output& output) : output_(output), coloured_(wantsColour(output)) {
  output_.write(enterScreen);
}

Screen::~Screen() {
  try {
    output_.write(leaveScreen);
  } catch (const OutputClosed&) {
  } catch (const Failure&) {
  }
}

// NOLINTNEXTLINE(readability-convert-member-functions-to-static): the terminal that was entered is the object's
TerminalSize Screen::size() const {
  return terminalSize(STDOUT_FILENO);
}

void Screen::draw(const std::vector<Line>& lines) {
  const TerminalSize screen = size();
  const std::size_t count = std::min(lines.size(), screen.rows);
  std::string text(home);
  for (std::size_t index = 0; index < count; ++index) {
    // Cleared first: behind a line that fills the screen's width the cursor stands on its last character.
    text.append(index == 0 ? "" : "\r\n").append(clearLine);
    text += rendered(lines[index], screen.columns, coloured_);
  }
  output_.write(text.append(count < screen.rows ? clearBelow : ""));
}

}  // namespace tarn::command
