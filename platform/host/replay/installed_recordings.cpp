// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "replay/installed_recordings.h"

#include <dlfcn.h>

#include <filesystem>
#include <system_error>

namespace vod::host {

namespace {

/** The folder of this library, with links resolved; the recordings are at a fixed path relative to it. */
std::filesystem::path libraryFolder() {
  Dl_info info{};
  if (::dladdr(reinterpret_cast<const void*>(&installedRecordings), &info) == 0 || info.dli_fname == nullptr) {
    return {};
  }
  std::error_code ignored;  // A path that cannot be resolved is used unchanged.
  const std::filesystem::path library = std::filesystem::weakly_canonical(info.dli_fname, ignored);
  return (library.empty() ? std::filesystem::path(info.dli_fname) : library).parent_path();
}

}  // namespace

std::vector<std::string> installedRecordings() {
  const std::filesystem::path folder = (libraryFolder() / VOD_HOST_RECORDINGS_FROM_LIBRARY).lexically_normal();
  return {folder / "street", folder / "street-mirrored"};
}

}  // namespace vod::host
