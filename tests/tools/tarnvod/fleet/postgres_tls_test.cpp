// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "fleet.h"
#include "fleet/collection_database.h"
#include "postgres.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <stdexcept>
#include <string>

using namespace tarn::command;
using testing::HasSubstr;
using testing::Not;

namespace {

/** Two authorities, and certificates of the first one: for this host, and for another one. */
constexpr const char* makeCertificates = R"sh(
set -eu
cd "$0"
for name in fleet others; do
  openssl req -x509 -newkey ec -pkeyopt ec_paramgen_curve:P-256 -nodes -days 2 -subj "/CN=$name" -keyout "$name.key" -out "$name.crt"
done
certificate() {
  openssl req -newkey ec -pkeyopt ec_paramgen_curve:P-256 -nodes -subj "/CN=$1" -keyout "$1.key" -out "$1.csr"
  printf 'extendedKeyUsage=serverAuth\nsubjectAltName=%s\n' "$2" >"$1.ext"
  openssl x509 -req -in "$1.csr" -CA fleet.crt -CAkey fleet.key -CAcreateserial -days 2 -out "$1.crt" -extfile "$1.ext"
}
certificate database IP:127.0.0.1
certificate elsewhere DNS:elsewhere.example
if [ "$(id -u)" -eq 0 ]; then
  chown postgres database.key elsewhere.key
fi
)sh";

/** A server that takes connections over TCP only with TLS and a password. */
class APostgresServerWithTls : public testing::Test {
 protected:
  APostgresServerWithTls() {
    const test::Outcome outcome = test::Process("/bin/sh", {"-c", makeCertificates, server.folder()}).wait();
    if (outcome.exitCode != 0) {
      throw std::runtime_error("openssl cannot make certificates: " + outcome.errors);
    }
    openCollection(server.url(), Database::Access::Write)
        ->run(
            "CREATE ROLE collector LOGIN PASSWORD 'right'; "
            "GRANT ALL ON SCHEMA public TO collector");
    test::writeTo(server.folder() / "data/pg_hba.conf",
                  "local all postgres trust\nhostssl all collector 127.0.0.1/32 scram-sha-256\n");
    startAs("database");
  }

  /** Starts the server again, with the certificate of that name. */
  void startAs(const std::string& name) {
    server.crash();
    const std::string file = (server.folder() / name).string();
    server.start({"listen_addresses=127.0.0.1", "port=" + std::to_string(port), "ssl=on",
                  "ssl_cert_file=" + file + ".crt", "ssl_key_file=" + file + ".key"});
  }

  /** A file in which libpq looks passwords up. */
  std::string passwordFile(const std::string& password) const {
    const std::string file = folder / "passwords";
    test::writeTo(file, "127.0.0.1:*:postgres:collector:" + password + "\n");
    ::chmod(file.c_str(), 0600);
    return file;
  }

  std::string url(const std::string& authority, const std::string& password) const {
    return "postgresql://collector@127.0.0.1:" + std::to_string(port) +
           "/postgres?sslmode=verify-full&sslrootcert=" + (server.folder() / (authority + ".crt")).string() +
           "&passfile=" + passwordFile(password);
  }

  /** Why the database cannot be opened; empty if it can. */
  static std::string problemOf(const std::string& url) {
    try {
      openCollection(url, Database::Access::Read);
      return "";
    } catch (const DatabaseProblem& problem) {
      return problem.what();
    }
  }

  std::string shownName() const { return "postgresql://127.0.0.1:" + std::to_string(port) + "/postgres: "; }

  const test::TemporaryFolder folder;
  test::PostgresServer server;
  const int port = test::freePort();
};

TEST_F(APostgresServerWithTls, IsUsedWithEncryption) {
  const auto database = openCollection(url("fleet", "right"), Database::Access::Create);

  Statement encryption(*database, "SELECT ssl::int FROM pg_stat_ssl WHERE pid = pg_backend_pid()");
  encryption.start();

  ASSERT_TRUE(encryption.next());
  EXPECT_EQ(encryption.number(0), 1);
}

TEST_F(APostgresServerWithTls, IsNotTrustedByAClientOfAnotherAuthority) {
  const std::string problem = problemOf(url("others", "right"));

  EXPECT_THAT(problem, HasSubstr(shownName()));
  EXPECT_THAT(problem, HasSubstr("certificate verify failed"));
  EXPECT_THAT(problem, Not(HasSubstr("\n")));
}

TEST_F(APostgresServerWithTls, IsNotTrustedWithACertificateForAnotherHost) {
  startAs("elsewhere");

  const std::string problem = problemOf(url("fleet", "right"));

  EXPECT_THAT(problem, HasSubstr("elsewhere.example"));
  EXPECT_THAT(problem, Not(HasSubstr("\n")));
}

TEST_F(APostgresServerWithTls, SaysThatThePasswordIsWrong) {
  const std::string problem = problemOf(url("fleet", "wrong"));

  EXPECT_THAT(problem, HasSubstr(shownName()));
  EXPECT_THAT(problem, HasSubstr("password authentication failed for user \"collector\""));
  EXPECT_THAT(problem, Not(HasSubstr("\n")));
  EXPECT_THAT(problem, Not(HasSubstr("wrong")));
}

}  // namespace
