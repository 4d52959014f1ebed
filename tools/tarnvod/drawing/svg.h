// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_COMMAND_SVG_H
#define TARNVOD_COMMAND_SVG_H

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

/** Pictures as text. */
namespace tarn::command::svg {

/** Text made safe between tags and in attributes; what XML does not allow becomes U+FFFD. */
std::string escaped(std::string_view text);

/** A coordinate, to a hundredth of a pixel. */
std::string number(double value);

using Attributes = std::vector<std::pair<std::string_view, std::string>>;

/** `<name attributes>content</name>`; the attributes are escaped here, the content must be already. */
std::string element(std::string_view name, const Attributes& attributes, std::string_view content = {});

/** Text that starts, or ends, at a point; `cls` is its class in the style sheet. */
std::string text(double x, double y, std::string_view cls, std::string_view content, std::string_view anchor = "start",
                 double size = 0);

/** About how wide text of a size is in the pictures' font. */
double textWidth(std::string_view content, double size);

/** A colour that stays with an object from picture to picture and differs from its neighbours'. */
std::string colourOf(std::uint32_t objectId);

struct Drawing {
  double width = 0;
  double height = 0;
  std::string content;
};

/** The drawings one below the other, as a self-contained picture. */
std::string picture(const std::vector<Drawing>& drawings, std::string_view title);

/** "image/png" or "image/jpeg". @throw Failure  when the bytes of the file are neither */
std::string mediaTypeOf(const std::string& path, std::string_view bytes);

/** An image file as the address of an image inside the picture. @throw Failure unless it is a PNG or JPEG that can be
 * read */
std::string embeddedImage(const std::string& path);

}  // namespace tarn::command::svg

#endif
