// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "base/postgres_database.h"

#include <libpq-fe.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <iterator>
#include <utility>

namespace tarn::command {
namespace {

constexpr std::array<std::string_view, 2> schemes{"postgresql://", "postgres://"};

/** Without user, password and parameters, for messages. */
std::string shownName(const std::string& url) {
  const std::size_t scheme = url.find("://") + 3;
  const std::size_t end = url.find('?', scheme);
  const std::string rest = url.substr(scheme, end == std::string::npos ? end : end - scheme);
  const std::size_t user = rest.rfind('@');
  return "postgresql://" + (user == std::string::npos ? rest : rest.substr(user + 1));
}

/** The first line: the others are hints and positions. */
std::string firstLine(const std::string& text) {
  return text.substr(0, text.find('\n'));
}

void checkUrl(const std::string& url, const std::string& name) {
  char* problem = nullptr;
  PQconninfoOption* const options = PQconninfoParse(url.c_str(), &problem);
  PQconninfoFree(options);
  if (options == nullptr) {
    const std::string text = problem != nullptr ? firstLine(problem) : "out of memory";
    PQfreemem(problem);
    throw UsageError(name + ": " + text);
  }
}

/** What the URL does not say otherwise. A server that has vanished is noticed after ten seconds. */
pg_conn* connected(const std::string& url, Database::Access access) {
  const char* const options = access == Database::Access::Read
                                  ? "-c client_min_messages=warning -c default_transaction_read_only=on"
                                  : "-c client_min_messages=warning";
  const std::array<const char*, 7> names{
      "connect_timeout", "tcp_user_timeout", "client_encoding", "options", "application_name", "dbname", nullptr};
  const std::array<const char*, 7> values{"5", "10000", "UTF8", options, "tarnvod", url.c_str(), nullptr};
  return PQconnectdbParams(names.data(), values.data(), 1);
}

/** PostgreSQL's texts cannot hold the null character. */
std::string withoutNull(std::string_view text) {
  std::string result;
  for (const char character : text) {
    character == '\0' ? result += "\xEF\xBF\xBD" : result += character;
  }
  return result;
}

class PostgresStatement : public PreparedStatement {
 public:
  PostgresStatement(const PostgresDatabase& database, std::string name) : database_(database), name_(std::move(name)) {}

  void bindNull(int position) override { valueAt(position).reset(); }
  void bindNumber(int position, std::int64_t number) override { valueAt(position) = std::to_string(number); }
  void bindReal(int position, float number) override {
    std::array<char, 32> text{};
    std::snprintf(text.data(), text.size(), "%.9g", static_cast<double>(number));
    valueAt(position) = text.data();
  }
  void bindText(int position, std::string_view text) override { valueAt(position) = withoutNull(text); }

  void run() override { database_.execute(name_, values_); }
  void start() override {
    result_ = database_.query(name_, values_);
    row_ = -1;
  }
  bool next() override { return ++row_ < PQntuples(result_.get()); }
  void reset() override { result_.reset(); }

  std::int64_t number(int column) const override {
    constexpr int decimal = 10;
    return std::strtoll(PQgetvalue(result_.get(), row_, column), nullptr, decimal);
  }
  std::string text(int column) const override { return PQgetvalue(result_.get(), row_, column); }

 private:
  std::optional<std::string>& valueAt(int position) {
    values_.resize(std::max(values_.size(), static_cast<std::size_t>(position)));
    return values_[static_cast<std::size_t>(position) - 1];
  }

  const PostgresDatabase& database_;
  const std::string name_;
  PostgresDatabase::Values values_;
  PostgresDatabase::Result result_;
  int row_ = -1;
};

/** PostgreSQL writes parameters as $1, $2 and so on. */
std::string withItsParameters(std::string statement) {
  std::replace(statement.begin(), statement.end(), '?', '$');
  return statement;
}

std::vector<const char*> pointersTo(const PostgresDatabase::Values& values) {
  std::vector<const char*> pointers;
  std::transform(values.begin(), values.end(), std::back_inserter(pointers),
                 [](const auto& value) { return value ? value->c_str() : nullptr; });
  return pointers;
}

}  // namespace

bool isPostgresUrl(std::string_view name) {
  return std::any_of(schemes.begin(), schemes.end(),
                     [name](std::string_view scheme) { return name.substr(0, scheme.size()) == scheme; });
}

void PostgresDatabase::ResultDeleter::operator()(pg_result* result) const {
  PQclear(result);
}

PostgresDatabase::PostgresDatabase(const std::string& url, Access access) : name_(shownName(url)) {
  checkUrl(url, name_);
  connection_ = connected(url, access);
  if (PQstatus(connection_) != CONNECTION_OK) {
    const std::string problem = firstLine(PQerrorMessage(connection_));
    PQfinish(connection_);
    throw DatabaseProblem(name_ + ": " + problem);
  }
}

PostgresDatabase::~PostgresDatabase() {
  PQfinish(connection_);
}

void PostgresDatabase::run(const std::string& statements) {
  checked(PQexec(connection_, statements.c_str()));
}

void PostgresDatabase::begin() {
  run("BEGIN");
  if (PQenterPipelineMode(connection_) == 0) {
    fail();
  }
  isInTransaction_ = true;
}

void PostgresDatabase::commit() {
  if (PQpipelineSync(connection_) == 0) {
    fail();
  }
  readUnread();
  checked(PQgetResult(connection_));  // of the synchronization
  if (PQexitPipelineMode(connection_) == 0) {
    fail();
  }
  isInTransaction_ = false;
  const Result answer = checked(PQexec(connection_, "COMMIT"));
  // The server answers a failed transaction by rolling it back, without an error.
  if (std::string_view(PQcmdStatus(answer.get())) != "COMMIT") {
    throw DatabaseProblem(name_ + ": the transaction was rolled back");
  }
}

std::unique_ptr<PreparedStatement> PostgresDatabase::prepare(const char* statement) const {
  std::string name = "statement" + std::to_string(++statements_);
  checked(PQprepare(connection_, name.c_str(), withItsParameters(statement).c_str(), 0, nullptr));
  return std::make_unique<PostgresStatement>(*this, std::move(name));
}

void PostgresDatabase::execute(const std::string& statement, const Values& values) const {
  if (!isInTransaction_) {
    query(statement, values);
    return;
  }
  send(statement, values);
  ++unread_;
}

PostgresDatabase::Result PostgresDatabase::query(const std::string& statement, const Values& values) const {
  if (!isInTransaction_) {
    const auto pointers = pointersTo(values);
    return checked(PQexecPrepared(connection_, statement.c_str(), static_cast<int>(values.size()), pointers.data(),
                                  nullptr, nullptr, 0));
  }
  send(statement, values);
  if (PQsendFlushRequest(connection_) == 0) {
    fail();
  }
  readUnread();
  return readAnswer();
}

void PostgresDatabase::send(const std::string& statement, const Values& values) const {
  const auto pointers = pointersTo(values);
  const int isSent = PQsendQueryPrepared(connection_, statement.c_str(), static_cast<int>(values.size()),
                                         pointers.data(), nullptr, nullptr, 0);
  if (isSent == 0) {
    fail();
  }
}

void PostgresDatabase::readUnread() const {
  for (; unread_ > 0; --unread_) {
    readAnswer();
  }
}

/** The answer to one statement, behind which comes the mark of its end. */
PostgresDatabase::Result PostgresDatabase::readAnswer() const {
  Result answer = checked(PQgetResult(connection_));
  const Result end(PQgetResult(connection_));
  return answer;
}

PostgresDatabase::Result PostgresDatabase::checked(pg_result* answer) const {
  Result result(answer);
  switch (PQresultStatus(answer)) {
    case PGRES_COMMAND_OK:
    case PGRES_TUPLES_OK:
    case PGRES_PIPELINE_SYNC:
    case PGRES_EMPTY_QUERY:
      return result;
    default:
      break;
  }
  const std::string problem = firstLine(PQresultErrorMessage(answer));
  if (problem.empty()) {
    fail();
  }
  throw DatabaseProblem(name_ + ": " + problem);
}

void PostgresDatabase::fail() const {
  throw DatabaseProblem(name_ + ": " + firstLine(PQerrorMessage(connection_)));
}

}  // namespace tarn::command
