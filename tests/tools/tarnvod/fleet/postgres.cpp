// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "postgres.h"

#include "fleet/collection_database.h"

#include <signal.h>
#include <sys/types.h>
#include <unistd.h>

#include <filesystem>
#include <stdexcept>
#include <vector>

namespace test {
namespace {

namespace fs = std::filesystem;

constexpr const char* user = "postgres";

/** The folder of the newest version's programs. */
std::string programFolder() {
  const fs::path versions = "/usr/lib/postgresql";
  fs::path newest;
  if (fs::exists(versions)) {
    for (const fs::path& version : fs::directory_iterator(versions)) {
      newest = fs::exists(version / "bin/postgres") ? std::max(newest, version / "bin/") : newest;
    }
  }
  if (newest.empty()) {
    throw std::runtime_error("PostgreSQL is not installed (Debian: postgresql)");
  }
  return newest;
}

bool isRoot() {
  return geteuid() == 0;
}

}  // namespace

PostgresServer::PostgresServer() : programs_(programFolder()) {
  if (isRoot()) {
    Process owner("/bin/chown", {user, folder_ / ""});
    if (owner.wait().exitCode != 0) {
      throw std::runtime_error("PostgreSQL's user is missing");
    }
  }
  Process initialisation("/usr/bin/env", asItsUser("initdb", {"--pgdata", folder_ / "data", "--username", user,
                                                              "--auth", "trust", "--encoding", "UTF8", "--no-sync"}));
  const Outcome outcome = initialisation.wait();
  if (outcome.exitCode != 0) {
    throw std::runtime_error("initdb: " + outcome.errors);
  }
  start();
}

PostgresServer& PostgresServer::emptied() {
  static PostgresServer server;
  tarn::command::openCollection(server.url(), tarn::command::Database::Access::Write)
      ->run("DROP SCHEMA public CASCADE; CREATE SCHEMA public");
  return server;
}

std::string PostgresServer::url() const {
  return "postgresql:///postgres?user=postgres&host=" + (folder_ / "").string();
}

void PostgresServer::start(const std::vector<std::string>& settings) {
  std::vector<std::string> arguments{"-D", folder_ / "data", "-k", folder_ / "", "-F", "-c", "listen_addresses="};
  for (const std::string& setting : settings) {
    arguments.insert(arguments.end(), {"-c", setting});
  }
  process_ = std::make_unique<Process>("/usr/bin/env", asItsUser("postgres", arguments));
  process_->waitForErrors("ready to accept connections");
}

void PostgresServer::crash() {
  process_->signal(SIGQUIT);
  process_->wait();
  process_.reset();
}

std::vector<std::string> PostgresServer::asItsUser(const std::string& program,
                                                   const std::vector<std::string>& arguments) const {
  std::vector<std::string> all{"LC_ALL=C.UTF-8"};
  if (isRoot()) {
    all.insert(all.end(), {"setpriv", "--reuid", user, "--regid", user, "--clear-groups"});
  }
  all.push_back(programs_ + program);
  all.insert(all.end(), arguments.begin(), arguments.end());
  return all;
}

}  // namespace test
