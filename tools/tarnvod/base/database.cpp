// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "base/database.h"

#include "base/errors.h"

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

}  // namespace

Database::Database(const std::string& file, std::string name, Access access) : name_(std::move(name)) {
  const int result = sqlite3_open_v2(file.c_str(), &handle_, flagsOf(access), nullptr);
  if (result != SQLITE_OK) {
    const std::string problem = handle_ != nullptr ? sqlite3_errmsg(handle_) : sqlite3_errstr(result);
    sqlite3_close(handle_);
    throw Failure(name_ + ": " + problem);
  }
}

Database::~Database() {
  sqlite3_close(handle_);
}

void Database::run(const char* statements) {
  check(sqlite3_exec(handle_, statements, nullptr, nullptr, nullptr));
}

void Database::check(int result) const {
  if (result != SQLITE_OK && result != SQLITE_DONE && result != SQLITE_ROW) {
    throw Failure(name_ + ": " + sqlite3_errmsg(handle_));
  }
}

int Database::changes() const {
  return sqlite3_changes(handle_);
}

std::int64_t Database::lastRow() const {
  return sqlite3_last_insert_rowid(handle_);
}

Statement::Statement(const Database& database, const char* statement) : database_(database) {
  database.check(sqlite3_prepare_v2(database.handle(), statement, -1, &statement_, nullptr));
}

Statement::~Statement() {
  sqlite3_finalize(statement_);
}

bool Statement::next() {
  const int result = sqlite3_step(statement_);
  database_.check(result);
  return result == SQLITE_ROW;
}

/** Its result repeats that of the last step, which was checked. */
void Statement::reset() {
  static_cast<void>(sqlite3_reset(statement_));
}

std::int64_t Statement::number(int column) const {
  return sqlite3_column_int64(statement_, column);
}

std::string Statement::text(int column) const {
  const void* const bytes = sqlite3_column_text(statement_, column);
  const auto size = static_cast<std::size_t>(sqlite3_column_bytes(statement_, column));
  return bytes == nullptr ? std::string() : std::string(static_cast<const char*>(bytes), size);
}

bool Statement::isNull(int column) const {
  return sqlite3_column_type(statement_, column) == SQLITE_NULL;
}

void Statement::bind(int position, float number) {
  database_.check(sqlite3_bind_double(statement_, position, static_cast<double>(number)));
}

void Statement::bind(int position, std::string_view text) {
  database_.check(
      sqlite3_bind_text(statement_, position, text.data(), static_cast<int>(text.size()), SQLITE_TRANSIENT));
}

void Statement::bindNumber(int position, std::int64_t number) {
  database_.check(sqlite3_bind_int64(statement_, position, number));
}

void Statement::bindNull(int position) {
  database_.check(sqlite3_bind_null(statement_, position));
}

}  // namespace tarn::command
