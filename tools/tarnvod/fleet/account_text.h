// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_COMMAND_ACCOUNT_TEXT_H
#define TARNVOD_COMMAND_ACCOUNT_TEXT_H

#include "fleet/audit.h"

#include <cstdint>
#include <map>
#include <string>
#include <vector>

/** The accounts of a fleet as they are printed. */
namespace tarn::command {

/** How many messages were refused, by reason. */
using Refusals = std::map<std::string, std::uint64_t>;

/** A table, and a line for each reason of refusals. */
std::string accountsText(const std::vector<CameraAccount>& accounts, const Refusals& refusals);

/** The same as a JSON object on one line. */
std::string accountsJson(const std::vector<CameraAccount>& accounts, const Refusals& refusals);

/** Whether no frame is missing, and no number belongs to two. */
bool areInOrder(const std::vector<CameraAccount>& accounts);

}  // namespace tarn::command

#endif
