// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_COMMAND_COLLECTION_DATABASE_H
#define TARNVOD_COMMAND_COLLECTION_DATABASE_H

#include "base/database.h"

#include <memory>
#include <string>

namespace tarn::command {

/**
 * Opens a collector's database: the URL of a PostgreSQL database, or an SQLite file. With `Access::Create`, makes the file and
 * the tables where there are none.
 *
 * @throw UsageError when the URL is invalid, or the command was built without PostgreSQL; Failure
 */
std::unique_ptr<Database> openCollection(const std::string& name, Database::Access access);

}  // namespace tarn::command

#endif
