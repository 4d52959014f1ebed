// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "drawing/svg.h"

#include "base/text.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>

namespace tarn::command::svg {
namespace {

constexpr std::string_view styleSheet =
    "text{font-family:'DejaVu Sans',Verdana,Helvetica,Arial,sans-serif;fill:#23303d}"
    ".title{font-size:20px;font-weight:bold}"
    ".note{font-size:12.5px;fill:#5d6b78}"
    ".axis{font-size:11px;fill:#7b8894}"
    ".label{font-weight:bold;paint-order:stroke;stroke:#fff;stroke-width:3.5px;stroke-linejoin:round}"
    ".chip{font-weight:bold;fill:#fff}"
    ".row{fill:#23303d}"
    ".frame{fill:none;stroke:#b9c2ca;stroke-width:1}"
    ".grid{stroke:#e6e9ec;stroke-width:1}"
    ".track{fill:none;stroke-width:2.4;stroke-linecap:round;stroke-linejoin:round}"
    ".casing{fill:none;stroke:#fff;stroke-width:5;stroke-opacity:.75;stroke-linecap:round;stroke-linejoin:round}"
    ".unseen{fill:none;stroke-width:1.6;stroke-dasharray:1.5 5;stroke-linecap:round}";

std::string hexadecimal(double red, double green, double blue) {
  std::array<char, 8> buffer{};
  const auto channel = [](double value) {
    return static_cast<unsigned>(std::lround(255 * std::clamp(value, 0.0, 1.0)));
  };
  static_cast<void>(std::snprintf(buffer.data(), buffer.size(), "#%02x%02x%02x", channel(red) & 0xFF,
                                  channel(green) & 0xFF, channel(blue) & 0xFF));
  return buffer.data();
}

/** Hue in degrees, saturation and lightness from 0 to 1. */
std::string fromHsl(double hue, double saturation, double lightness) {
  const double amplitude = saturation * std::min(lightness, 1 - lightness);
  const auto channel = [=](double offset) {
    const double position = std::fmod(offset + hue / 30, 12);
    return lightness - amplitude * std::max(-1.0, std::min({position - 3, 9 - position, 1.0}));
  };
  return hexadecimal(channel(0), channel(8), channel(4));
}

std::string_view replacementOf(char character) {
  switch (character) {
    case '&':
      return "&amp;";
    case '<':
      return "&lt;";
    case '>':
      return "&gt;";
    case '"':
      return "&quot;";
    case '\'':
      return "&#39;";
    default:
      return {};
  }
}

/** U+FFFE and U+FFFF are not valid characters in XML. */
bool startsWithNonCharacter(std::string_view text) {
  return text.substr(0, 3) == "\xEF\xBF\xBE" || text.substr(0, 3) == "\xEF\xBF\xBF";
}

}  // namespace

std::string escaped(std::string_view text) {
  const std::string valid = printable(text);
  std::string result;
  for (std::size_t index = 0; index < valid.size(); ++index) {
    if (startsWithNonCharacter(std::string_view(valid).substr(index))) {
      result += "\uFFFD";
      index += 2;
      continue;
    }
    const std::string_view replacement = replacementOf(valid[index]);
    result += replacement.empty() ? std::string_view(valid).substr(index, 1) : replacement;
  }
  return result;
}

std::string number(double value) {
  std::string text = fixed(value, 2);
  text.erase(text.find_last_not_of('0') + 1);
  if (text.back() == '.') {
    text.pop_back();
  }
  return text;
}

std::string element(std::string_view name, const Attributes& attributes, std::string_view content) {
  std::string result = "<" + std::string(name);
  for (const auto& [key, value] : attributes) {
    result.append(" ").append(key).append("=\"").append(escaped(value)).append("\"");
  }
  return content.empty() ? result.append("/>\n")
                         : result.append(">").append(content).append("</").append(name).append(">\n");
}

std::string text(double x, double y, std::string_view cls, std::string_view content, std::string_view anchor,
                 double size) {
  Attributes attributes{{"x", number(x)}, {"y", number(y)}, {"class", std::string(cls)}};
  if (anchor != "start") {
    attributes.emplace_back("text-anchor", std::string(anchor));
  }
  if (size > 0) {
    attributes.emplace_back("font-size", number(size));
  }
  return element("text", attributes, escaped(content));
}

double textWidth(std::string_view content, double size) {
  constexpr double averageWidth = 0.7;
  return averageWidth * size * static_cast<double>(displayWidth(content));
}

std::string colourOf(std::uint32_t objectId) {
  constexpr double goldenAngle = 137.508;
  constexpr std::array<double, 3> lightness{0.40, 0.47, 0.32};
  return fromHsl(std::fmod(objectId * goldenAngle, 360), 0.72, lightness[objectId % lightness.size()]);
}

std::string picture(const std::vector<Drawing>& drawings, std::string_view title) {
  double width = 0;
  double height = 0;
  std::string content = element("title", {}, escaped(title)) + element("style", {}, styleSheet);
  std::string parts;
  for (const Drawing& drawing : drawings) {
    parts += element("g", {{"transform", "translate(0 " + number(height) + ")"}}, "\n" + drawing.content);
    width = std::max(width, drawing.width);
    height += drawing.height;
  }
  content += element("rect", {{"width", number(width)}, {"height", number(height)}, {"fill", "#fbfbf9"}});
  return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n" +
         element("svg",
                 {{"xmlns", "http://www.w3.org/2000/svg"},
                  {"width", number(width)},
                  {"height", number(height)},
                  {"viewBox", "0 0 " + number(width) + " " + number(height)}},
                 "\n" + content + parts);
}

}  // namespace tarn::command::svg
