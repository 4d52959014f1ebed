// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_COMMAND_SQLITE_DATABASE_H
#define TARNVOD_COMMAND_SQLITE_DATABASE_H

#include "base/database.h"

struct sqlite3;

namespace tarn::command {

/** A database in a file, by SQLite. */
class SqliteDatabase : public Database {
 public:
  /** @throw Failure when the file cannot be opened */
  SqliteDatabase(const std::string& file, std::string name, Access access = Access::Write);
  ~SqliteDatabase() override;
  SqliteDatabase(const SqliteDatabase&) = delete;
  SqliteDatabase& operator=(const SqliteDatabase&) = delete;

  void run(const std::string& statements) override;
  void begin() override;
  void commit() override;
  std::unique_ptr<PreparedStatement> prepare(const char* statement) const override;
  std::string_view rowNumber() const override { return "INTEGER PRIMARY KEY"; }

  /** @throw Failure when the result of a call is an error */
  void check(int result) const;

 private:
  const std::string name_;
  sqlite3* handle_ = nullptr;
};

}  // namespace tarn::command

#endif
