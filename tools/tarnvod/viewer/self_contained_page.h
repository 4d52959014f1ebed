// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_COMMAND_SELF_CONTAINED_PAGE_H
#define TARNVOD_COMMAND_SELF_CONTAINED_PAGE_H

#include <cstddef>
#include <string>
#include <string_view>

namespace tarn::command {

/**
 * The viewer's page with all that it asks for, as one HTML file: the scripts are in its import map, and what a viewer
 * would answer is compressed in elements that have the requests' paths as ids. The page asks nobody else, and its
 * policy forbids it to.
 */
class SelfContainedPage {
 public:
  /** Mail and issue trackers take files of this size. */
  static constexpr std::size_t mostBytes = 24U << 20U;

  /** Adds the answer to a request for JSON. @throw Failure  when the page would have more than `mostBytes` */
  void add(std::string_view path, std::string_view json);

  /** The whole file. */
  std::string html(std::string_view title) const;

 private:
  std::string answers_;
};

}  // namespace tarn::command

#endif
