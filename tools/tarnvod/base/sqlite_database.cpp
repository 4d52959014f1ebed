// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "base/sqlite_database.h"

#include <sqlite3.h>

#include <utility>

namespace tarn::command {
namespace {

int flagsOf(Database::Access access) {
  switch (access) {
    case Database::Access::Read:
      return SQLITE_OPEN_READONLY;
    case Database::Access::Create:
      return SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE;
    case Database::Access::Write:
      break;
  }
  return SQLITE_OPEN_READWRITE;
}

class SqliteStatement : public PreparedStatement {
 public:
  SqliteStatement(const SqliteDatabase& database, sqlite3* handle, const char* statement) : database_(database) {
    database.check(sqlite3_prepare_v2(handle, statement, -1, &statement_, nullptr));
  }
  ~SqliteStatement() override { sqlite3_finalize(statement_); }
  SqliteStatement(const SqliteStatement&) = delete;
  SqliteStatement& operator=(const SqliteStatement&) = delete;

  void bindNull(int position) override { database_.check(sqlite3_bind_null(statement_, position)); }
  void bindNumber(int position, std::int64_t number) override {
    database_.check(sqlite3_bind_int64(statement_, position, number));
  }
  void bindReal(int position, float number) override {
    database_.check(sqlite3_bind_double(statement_, position, static_cast<double>(number)));
  }
  void bindText(int position, std::string_view text) override {
    const int size = static_cast<int>(text.size());
    database_.check(sqlite3_bind_text(statement_, position, text.data(), size, SQLITE_TRANSIENT));
  }

  void run() override {
    next();
    reset();
  }
  void start() override {}
  bool next() override {
    const int result = sqlite3_step(statement_);
    database_.check(result);
    return result == SQLITE_ROW;
  }
  /** Its result repeats that of the last step, which was checked. */
  void reset() override { static_cast<void>(sqlite3_reset(statement_)); }

  std::int64_t number(int column) const override { return sqlite3_column_int64(statement_, column); }
  std::string text(int column) const override {
    const void* const bytes = sqlite3_column_text(statement_, column);
    const auto size = static_cast<std::size_t>(sqlite3_column_bytes(statement_, column));
    return bytes == nullptr ? std::string() : std::string(static_cast<const char*>(bytes), size);
  }

 private:
  const SqliteDatabase& database_;
  sqlite3_stmt* statement_ = nullptr;
};

}  // namespace

SqliteDatabase::SqliteDatabase(const std::string& file, std::string name, Access access) : name_(std::move(name)) {
  const int result = sqlite3_open_v2(file.c_str(), &handle_, flagsOf(access), nullptr);
  if (result != SQLITE_OK) {
    const std::string problem = handle_ != nullptr ? sqlite3_errmsg(handle_) : sqlite3_errstr(result);
    sqlite3_close(handle_);
    throw Failure(name_ + ": " + problem);
  }
}

SqliteDatabase::~SqliteDatabase() {
  sqlite3_close(handle_);
}

void SqliteDatabase::run(const std::string& statements) {
  check(sqlite3_exec(handle_, statements.c_str(), nullptr, nullptr, nullptr));
}

void SqliteDatabase::begin() {
  run("BEGIN IMMEDIATE");
}

void SqliteDatabase::commit() {
  run("COMMIT");
}

std::unique_ptr<PreparedStatement> SqliteDatabase::prepare(const char* statement) const {
  return std::make_unique<SqliteStatement>(*this, handle_, statement);
}

void SqliteDatabase::check(int result) const {
  if (result != SQLITE_OK && result != SQLITE_DONE && result != SQLITE_ROW) {
    throw Failure(name_ + ": " + sqlite3_errmsg(handle_));
  }
}

}  // namespace tarn::command
