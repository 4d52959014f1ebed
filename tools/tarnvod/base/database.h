// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_COMMAND_DATABASE_H
#define TARNVOD_COMMAND_DATABASE_H

#include "base/errors.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>

namespace tarn::command {

/** The server of a database cannot be reached, or has refused something. It may do so no longer. */
class DatabaseProblem : public Failure {
  using Failure::Failure;
};

/** A prepared statement, as a kind of database implements it. `Statement` is what to use. */
class PreparedStatement {
 public:
  virtual ~PreparedStatement() = default;

  /** The parameters ?1, ?2 and so on. What is not bound again keeps its value. */
  virtual void bindNull(int position) = 0;
  virtual void bindNumber(int position, std::int64_t number) = 0;
  virtual void bindReal(int position, float number) = 0;
  virtual void bindText(int position, std::string_view text) = 0;

  /** Runs a statement whose rows nobody wants. */
  virtual void run() = 0;
  /** Begins a query. */
  virtual void start() = 0;
  virtual bool next() = 0;
  /** Ends a query, also before its last row. */
  virtual void reset() = 0;

  virtual std::int64_t number(int column) const = 0;
  virtual std::string text(int column) const = 0;
};

/**
 * One connection to a database of either kind. Statements are those that all kinds understand; parameters are ?1, ?2 and
 * so on. Failures name the database as the user knows it. Not for
 * use by two threads.
 */
class Database {
 public:
  enum class Access { Read, Write, Create };

  virtual ~Database() = default;

  /** Runs statements without parameters and results. @throw Failure */
  virtual void run(const std::string& statements) = 0;

  /** Begins a transaction. After a failure before the end of `commit`, the connection is of no more use. @throw Failure */
  virtual void begin() = 0;
  /** Returns once everything since `begin` is on the server's disk, as far as the server is so configured. @throw Failure */
  virtual void commit() = 0;

  /** @throw Failure when the statement is invalid for this database */
  virtual std::unique_ptr<PreparedStatement> prepare(const char* statement) const = 0;

  /** How a table declares the column that numbers its rows. */
  virtual std::string_view rowNumber() const = 0;
};

/** A prepared statement, which is run with one set of values after the other, while its database exists. */
class Statement {
 public:
  /** @throw Failure when the statement is invalid for this database */
  Statement(const Database& database, const char* statement) : prepared_(database.prepare(statement)) {}

  /** Runs a statement that returns no rows. @throw Failure, at the latest when the transaction is committed */
  template <typename... Values>
  void run(const Values&... values) {
    bindAll(values...);
    prepared_->run();
  }

  /** Begins a query; `next` goes to its first row. @throw Failure */
  template <typename... Values>
  void start(const Values&... values) {
    bindAll(values...);
    prepared_->start();
  }

  /** Goes to the next row; false behind the last one. @throw Failure */
  bool next() { return prepared_->next(); }
  void reset() { prepared_->reset(); }

  /** Of the present row, counted from 0; 0, or empty, for null. */
  std::int64_t number(int column) const { return prepared_->number(column); }
  std::string text(int column) const { return prepared_->text(column); }

 private:
  template <typename... Values>
  void bindAll(const Values&... values) {
    prepared_->reset();
    [[maybe_unused]] int position = 0;
    (bind(++position, values), ...);
  }
  template <typename Number>
  std::enable_if_t<std::is_integral_v<Number>> bind(int position, Number number) {
    prepared_->bindNumber(position, static_cast<std::int64_t>(number));
  }
  void bind(int position, float number) { prepared_->bindReal(position, number); }
  void bind(int position, std::string_view text) { prepared_->bindText(position, text); }
  template <typename Value>
  void bind(int position, const std::optional<Value>& value) {
    value ? bind(position, *value) : prepared_->bindNull(position);
  }

  std::unique_ptr<PreparedStatement> prepared_;
};

}  // namespace tarn::command

#endif
