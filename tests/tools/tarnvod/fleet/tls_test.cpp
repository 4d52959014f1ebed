// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "a_fleet.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>

#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

using testing::HasSubstr;
using testing::Not;

namespace {

/** Two authorities, and certificates of the broker, of clients, and of a client that the other authority has signed. */
constexpr const char* makeCertificates = R"(
set -eu
cd "$0"
authority() {
  openssl req -x509 -newkey ec -pkeyopt ec_paramgen_curve:P-256 -nodes -days 2 -subj "/CN=$1" -keyout "$1.key" -out "$1.crt"
}
certificate() {
  openssl req -newkey ec -pkeyopt ec_paramgen_curve:P-256 -nodes -subj "/CN=$1" -keyout "$1.key" -out "$1.csr"
  printf 'extendedKeyUsage=%s\nsubjectAltName=%s\n' "$2" "$3" >"$1.ext"
  openssl x509 -req -in "$1.csr" -CA "$4.crt" -CAkey "$4.key" -CAcreateserial -days 2 -out "$1.crt" -extfile "$1.ext"
}
authority fleet
authority others
certificate broker serverAuth IP:127.0.0.1 fleet
certificate elsewhere serverAuth DNS:elsewhere.example fleet
certificate gate clientAuth DNS:gate fleet
certificate collector clientAuth DNS:collector fleet
certificate stranger clientAuth DNS:stranger others
)";

class AFleetWithTls : public test::AFleet {
 protected:
  static void SetUpTestSuite() {
    certificates = std::make_unique<test::TemporaryFolder>();
    const test::Outcome outcome = test::Process("/bin/sh", {"-c", makeCertificates, *certificates / ""}).wait();
    if (outcome.exitCode != 0) {
      throw std::runtime_error("openssl cannot make certificates: " + outcome.errors);
    }
  }
  static void TearDownTestSuite() { certificates.reset(); }

  static std::string file(const std::string& name) { return *certificates / name; }

  /** The settings of a broker that has the certificate of that name. */
  static std::string settings(const std::string& name) {
    return "cafile " + file("fleet.crt") + "\ncertfile " + file(name + ".crt") + "\nkeyfile " + file(name + ".key") +
           "\n";
  }

  static std::vector<std::string> identity(const std::string& name) {
    return {"--cert", file(name + ".crt"), "--key", file(name + ".key")};
  }

  /** A process that connects to that broker. */
  std::unique_ptr<test::Process> collectorOf(const test::BrokerProcess& broker,
                                             std::vector<std::string> options) const {
    options.insert(options.begin(), {"collect", database(), "--port", std::to_string(broker.port())});
    return std::make_unique<test::Process>(test::command(), options);
  }

  static std::unique_ptr<test::TemporaryFolder> certificates;
};

std::unique_ptr<test::TemporaryFolder> AFleetWithTls::certificates;

class ABrokerThatRequiresCertificates : public AFleetWithTls {
 protected:
  ABrokerThatRequiresCertificates() { broker.start(); }

  std::vector<std::string> trusting(const std::string& authority, const std::string& name) const {
    std::vector<std::string> options = identity(name);
    options.insert(options.end(), {"--cafile", file(authority + ".crt")});
    return options;
  }

  test::BrokerProcess broker{folder / "", settings("broker") +
                                              "require_certificate true\n"
                                              "use_identity_as_username true\n"};
};

TEST_F(ABrokerThatRequiresCertificates, PassesTheFramesOfAClientThatHasOne) {
  const auto process = collectorOf(broker, trusting("fleet", "collector"));
  process->waitForErrors(": connected\n");
  std::vector<std::string> arguments = trusting("fleet", "gate");
  arguments.insert(arguments.begin(),
                   {"publish", "--site", "north", "--device", "gate", "--spool", folder / "spool", "--until-stored",
                    "--frames", "10", "1", "--port", std::to_string(broker.port())});

  const test::Outcome published = test::run(arguments, playing("20"));

  EXPECT_EQ(published.exitCode, 0) << published.errors;
  EXPECT_GE(audit()["cameras"][0]["stored"], 10);
}

TEST_F(ABrokerThatRequiresCertificates, IsNotTrustedByAClientOfAnotherAuthority) {
  const auto process = collectorOf(broker, trusting("others", "collector"));

  process->waitForErrors(
      "cannot connect: its certificate is not of an authority of --cafile, or is for another host\n");

  process->signal(SIGTERM);
  EXPECT_THAT(process->wait().errors, Not(HasSubstr("connected\n")));
}

TEST_F(ABrokerThatRequiresCertificates, IsNotTrustedAtAnotherHost) {
  test::BrokerProcess elsewhere(folder / "", settings("elsewhere"));
  elsewhere.start();

  const auto process = collectorOf(elsewhere, trusting("fleet", "collector"));

  process->waitForErrors(
      "cannot connect: its certificate is not of an authority of --cafile, or is for another host\n");
}

TEST_F(ABrokerThatRequiresCertificates, RefusesAClientWithoutOne) {
  const auto process = collectorOf(broker, {"--cafile", file("fleet.crt")});

  process->waitForErrors("it closes the connection; it may require another certificate (--cert)\n");
}

TEST_F(ABrokerThatRequiresCertificates, RefusesACertificateOfAnotherAuthority) {
  const auto process = collectorOf(broker, trusting("fleet", "stranger"));

  process->waitForErrors("it closes the connection; it may require another certificate (--cert)\n");
}

TEST_F(ABrokerThatRequiresCertificates, RefusesAClientWithoutTls) {
  const auto process = collectorOf(broker, {});

  process->waitForErrors("it closes the connection; it may require TLS (--cafile)\n");
}

TEST_F(ABrokerThatRequiresCertificates, IsNotReachedWithTheKeyOfAnotherCertificate) {
  const auto process =
      collectorOf(broker, {"--cafile", file("fleet.crt"), "--cert", file("gate.crt"), "--key", file("collector.key")});

  process->waitForErrors("TLS: key values mismatch\n");
}

TEST_F(ABrokerThatRequiresCertificates, IsNotReachedWithAFileThatDoesNotExist) {
  const auto process = collectorOf(broker, trusting("nowhere", "gate"));

  process->waitForErrors("nowhere.crt: ");
}

class ABrokerThatRequiresAPassword : public AFleetWithTls {
 protected:
  ABrokerThatRequiresAPassword() {
    test::writeTo(folder / "users", "");
    const test::Outcome outcome =
        test::Process("/usr/bin/mosquitto_passwd", {"-b", folder / "users", "gate", "a secret"}).wait();
    EXPECT_EQ(outcome.exitCode, 0) << outcome.errors;
    broker.start();
  }

  std::unique_ptr<test::Process> collectorWithPassword(const std::string& contents) const {
    test::writeTo(folder / "password", contents);
    return collectorOf(broker,
                       {"--cafile", file("fleet.crt"), "--user", "gate", "--password-file", folder / "password"});
  }

  test::BrokerProcess broker{
      folder / "", settings("broker") + "allow_anonymous false\npassword_file " + (folder / "users").string() + "\n"};
};

TEST_F(ABrokerThatRequiresAPassword, AcceptsTheFirstLineOfTheFile) {
  const auto process = collectorWithPassword("a secret\nanother line\n");

  process->waitForErrors(": connected\n");
}

TEST_F(ABrokerThatRequiresAPassword, RefusesAnotherOne) {
  const auto process = collectorWithPassword("a guess\n");

  process->waitForErrors("Connection Refused: not authorised.");
}

TEST_F(ABrokerThatRequiresAPassword, IsNotReachedWithAFileThatDoesNotExist) {
  const auto process = collectorOf(broker, {"--user", "gate", "--password-file", folder / "nowhere"});

  process->waitForErrors("nowhere: ");
}

}  // namespace
