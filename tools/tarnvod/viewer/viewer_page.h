// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_COMMAND_VIEWER_PAGE_H
#define TARNVOD_COMMAND_VIEWER_PAGE_H

#include "http/http_site.h"

namespace tarn::command {

/** Has a site answer with the files of the viewer's page. */
void addPage(HttpSite& site);

}  // namespace tarn::command

#endif
