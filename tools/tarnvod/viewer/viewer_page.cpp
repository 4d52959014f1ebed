// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "viewer/viewer_page.h"

#include "viewer/page_files.h"

#include <memory>
#include <string>

namespace tarn::command {

void addPage(HttpSite& site) {
  for (const PageFile& file : pageFiles()) {
    site.add(std::string(file.path), std::string(file.type), std::make_shared<const std::string>(file.text));
  }
}

}  // namespace tarn::command
