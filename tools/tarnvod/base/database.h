// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_COMMAND_DATABASE_H
#define TARNVOD_COMMAND_DATABASE_H

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>

struct sqlite3;
struct sqlite3_stmt;

namespace tarn::command {

/** One connection to an SQLite database. Failures name the file as the user knows it. Not for use by two threads. */
class Database {
 public:
  enum class Access { Read, Write, Create };

  /** @throw Failure when the file cannot be opened */
  Database(const std::string& file, std::string name, Access access = Access::Write);
  ~Database();
  Database(const Database&) = delete;
  Database& operator=(const Database&) = delete;

  /** Runs statements without results. @throw Failure */
  void run(const char* statements);

  /** @throw Failure when the result is an error */
  void check(int result) const;

  /** How many rows the last statement changed. */
  int changes() const;
  std::int64_t lastRow() const;

  sqlite3* handle() const { return handle_; }

 private:
  const std::string name_;
  sqlite3* handle_ = nullptr;
};

/** A prepared statement, which is run with one set of values after the other. */
class Statement {
 public:
  /** @throw Failure when the statement is invalid for this database */
  Statement(const Database& database, const char* statement);
  ~Statement();
  Statement(const Statement&) = delete;
  Statement& operator=(const Statement&) = delete;

  /** Runs a statement that returns no rows. @throw Failure */
  template <typename... Values>
  void run(const Values&... values) {
    start(values...);
    next();
    reset();
  }

  /** Begins a query; `next` goes to its first row. @throw Failure */
  template <typename... Values>
  void start(const Values&... values) {
    reset();
    int position = 0;
    (bind(++position, values), ...);
  }

  /** Goes to the next row; false behind the last one. @throw Failure */
  bool next();
  void reset();

  /** Of the present row, counted from 0; 0, or empty, for null. */
  std::int64_t number(int column) const;
  std::string text(int column) const;
  bool isNull(int column) const;

 private:
  template <typename Number>
  std::enable_if_t<std::is_integral_v<Number>> bind(int position, Number number) {
    bindNumber(position, static_cast<std::int64_t>(number));
  }
  void bind(int position, float number);
  void bind(int position, std::string_view text);
  template <typename Value>
  void bind(int position, const std::optional<Value>& value) {
    value ? bind(position, *value) : bindNull(position);
  }
  void bindNumber(int position, std::int64_t number);
  void bindNull(int position);

  const Database& database_;
  sqlite3_stmt* statement_ = nullptr;
};

}  // namespace tarn::command

#endif
