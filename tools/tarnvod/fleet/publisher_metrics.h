// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_COMMAND_PUBLISHER_METRICS_H
#define TARNVOD_COMMAND_PUBLISHER_METRICS_H

#include "fleet/messages.h"

#include <string>

namespace tarn::command {

/** What Prometheus reads of a publisher. */
std::string publisherMetrics(const Origin& origin, const PublisherReport& report);

}  // namespace tarn::command

#endif
