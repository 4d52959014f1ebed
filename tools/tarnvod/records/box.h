// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_COMMAND_BOX_H
#define TARNVOD_COMMAND_BOX_H

#include <array>
#include <optional>

namespace CLI {
class App;
}

namespace tarn::command {

/** A box in the picture: 0 is its left or upper edge, 1 its right or lower one. */
struct Box {
  double left = 0;
  double top = 0;
  double right = 0;
  double bottom = 0;

  /** Whether all edges are numbers: a detector may send infinities and NaN, which have no place in a picture. */
  bool isFinite() const;
};

/** What the four numbers of a box mean. They are the service's; the defaults are those of this project's recordings. */
struct BoxConvention {
  enum class Form {
    Corners,  ///< left, top, right, bottom
    Size,     ///< left, top, width, height
  };

  Form form = Form::Corners;
  /** The numbers that stand for the picture's left, upper, right and lower edge. */
  std::array<float, 4> range{0, 0, 1, 1};

  Box toPicture(const std::array<float, 4>& numbers) const;

  /** Width by height of the range, if it is in pixels; nothing for a range that is as wide as high. */
  std::optional<double> aspect() const;
};

/** Adds the options that choose the convention. */
class BoxOptions {
 public:
  void addTo(CLI::App& command);
  /** @throw UsageError  when the range is empty */
  BoxConvention convention() const;

 private:
  BoxConvention::Form form_ = BoxConvention::Form::Corners;
  std::optional<std::array<float, 4>> range_;
};

}  // namespace tarn::command

#endif
