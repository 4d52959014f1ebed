// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_COMMAND_COLLECTION_SCHEMA_H
#define TARNVOD_COMMAND_COLLECTION_SCHEMA_H

#include <string>
#include <string_view>

namespace tarn::command {

/**
 * Makes the tables of a collector's database where there are none. Times are in microseconds since 1970-01-01 UTC.
 *
 * @param rowNumber  how the database declares a column that numbers the rows
 */
std::string collectionSchema(std::string_view rowNumber);

}  // namespace tarn::command

#endif
