// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_COMMAND_PAGE_SETUP_H
#define TARNVOD_COMMAND_PAGE_SETUP_H

#include "records/box.h"

#include <cstddef>
#include <map>
#include <optional>
#include <set>
#include <string>

namespace tarn::command {

/** As many recordings are shown in step. */
inline constexpr std::size_t mostRecordings = 16;

/** What the viewer's page needs before it draws anything. Recordings stand for cameras, numbered from 1 in their order. */
struct PageSetup {
  bool isLive = false;
  std::set<int> cameras;
  BoxConvention boxes;
  std::optional<double> aspect;            ///< width by height of the picture; without, that of the boxes' range
  std::map<int, std::string> backgrounds;  ///< addresses of images, by camera
};

std::string setupJson(const PageSetup& setup);

/** As many numbers as there are recordings. */
std::set<int> numbersOf(std::size_t recordings);

/** Where the page finds the overview of a recording. */
std::string pathOfOverview(int recording);

}  // namespace tarn::command

#endif
