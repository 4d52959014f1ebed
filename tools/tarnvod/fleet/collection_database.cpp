// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "fleet/collection_database.h"

#include "base/sqlite_database.h"
#include "fleet/collection_schema.h"

#ifdef TARNVOD_WITH_POSTGRESQL
#include "base/postgres_database.h"
#endif

namespace tarn::command {
namespace {

/** A commit has reached the disk when it returns, and can be read while the next one is made. */
constexpr const char* sqliteSettings =
    "PRAGMA journal_mode = WAL; PRAGMA synchronous = FULL; PRAGMA busy_timeout = 10000";

std::unique_ptr<Database> openFile(const std::string& name, Database::Access access) {
  auto database = std::make_unique<SqliteDatabase>(name, name, access);
  if (access == Database::Access::Create) {
    database->run(sqliteSettings);
  }
  return database;
}

std::unique_ptr<Database> opened(const std::string& name, Database::Access access) {
#ifdef TARNVOD_WITH_POSTGRESQL
  if (isPostgresUrl(name)) {
    return std::make_unique<PostgresDatabase>(name, access);
  }
#else
  if (name.find("://") != std::string::npos) {
    throw UsageError("this command was built without PostgreSQL; name a file");
  }
#endif
  return openFile(name, access);
}

}  // namespace

std::unique_ptr<Database> openCollection(const std::string& name, Database::Access access) {
  auto database = opened(name, access);
  if (access == Database::Access::Create) {
    database->run(collectionSchema(database->rowNumber()));
  }
  return database;
}

}  // namespace tarn::command
