// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_TESTS_TOOLS_TARNVOD_FLEET_POSTGRES_H
#define TARNVOD_TESTS_TOOLS_TARNVOD_FLEET_POSTGRES_H

#include <tools/tarnvod/process.h>
#include <tools/tarnvod/situations.h>

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace test {

/**
 * A PostgreSQL server of the tests' own, which listens to a socket in a temporary folder. It runs as the user postgres if the
 * tests run as root. Throws when PostgreSQL is not installed.
 */
class PostgresServer {
 public:
  PostgresServer();

  /** The one that all tests of a program share, with an empty database. */
  static PostgresServer& emptied();

  std::string url() const;
  /** For files that the server reads. */
  std::filesystem::path folder() const { return folder_ / ""; }
  /** @param settings  in addition to the usual ones, "NAME=VALUE" */
  void start(const std::vector<std::string>& settings = {});
  /** Ends all connections at once and leaves recovery to the next start. */
  void crash();

 private:
  std::vector<std::string> asItsUser(const std::string& program, const std::vector<std::string>& arguments) const;

  const TemporaryFolder folder_;
  const std::string programs_;
  std::unique_ptr<Process> process_;
};

}  // namespace test

#endif
