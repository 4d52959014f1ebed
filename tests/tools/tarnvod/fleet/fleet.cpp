// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "fleet.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <signal.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <stdexcept>

namespace test {
namespace {

constexpr std::chrono::seconds patience{60};
constexpr const char* broker = "/usr/sbin/mosquitto";

/** A listener is silent while a test does other work, and its broker may be paused meanwhile. */
constexpr int longKeepAlive = 300;

tarn::command::BrokerOptions optionsOf(int port) {
  tarn::command::BrokerOptions options;
  options.port = port;
  options.keepAlive = longKeepAlive;
  return options;
}

bool never() {
  return false;
}

}  // namespace

int freePort() {
  const int descriptor = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  socklen_t size = sizeof(address);
  auto* const generic = reinterpret_cast<sockaddr*>(&address);
  const bool isBound = ::bind(descriptor, generic, size) == 0 && ::getsockname(descriptor, generic, &size) == 0;
  ::close(descriptor);
  if (!isBound) {
    throw std::runtime_error("no free port");
  }
  return ntohs(address.sin_port);
}

BrokerProcess::BrokerProcess(const std::filesystem::path& folder, const std::string& settings)
    : port_(freePort()), configuration_(folder / "broker.conf") {
  writeTo(configuration_, "listener " + std::to_string(port_) + " 127.0.0.1\nuser root\nlog_dest stderr\n" +
                              "max_queued_messages 0\n" + settings);
}

void BrokerProcess::start() {
  if (!std::filesystem::exists(broker)) {
    throw std::runtime_error("Mosquitto is not installed: " + std::string(broker) + " (Debian: mosquitto)");
  }
  process_ = std::make_unique<Process>(broker, std::vector<std::string>{"-c", configuration_});
  process_->waitForErrors(" running\n");
}

void BrokerProcess::kill() {
  process_->signal(SIGKILL);
  process_->wait();
  process_.reset();
}

void BrokerProcess::pause() {
  process_->signal(SIGSTOP);
}

void BrokerProcess::goOn() {
  process_->signal(SIGCONT);
}

Listener::Listener(int port)
    : broker_(
          optionsOf(port), {"listener", false, std::nullopt},
          [this](const tarn::command::BrokerMessage& message) {
            std::string text(message.payload);
            messages_.push_back({std::string(message.topic), text, nlohmann::json::parse(text, nullptr, false)});
          },
          [](int) {}) {
  broker_.connect(never);
  broker_.subscribe({"tarnvod/#"}, never);
}

void Listener::waitUntil(const std::function<bool()>& condition) {
  const auto deadline = std::chrono::steady_clock::now() + patience;
  while (!condition()) {
    broker_.wait(std::chrono::milliseconds(50));
    if (std::chrono::steady_clock::now() > deadline || !broker_.isConnected()) {
      throw std::runtime_error("timed out waiting for a message; " + broker_.problem() + "\n" + lines());
    }
  }
}

void Listener::waitForState(const std::string& state) {
  waitUntil([&] {
    return std::any_of(messages_.begin(), messages_.end(), [&](const Message& message) {
      return message.topic == "tarnvod/north/gate/status" && message.json["state"] == state;
    });
  });
}

void Listener::publish(const std::string& topic, const std::string& payload, bool isRetained) {
  broker_.publish(topic, payload, isRetained);
}

std::vector<int> Listener::sequences(int camera) const {
  std::vector<int> numbers;
  for (const Message& message : messages_) {
    if (message.topic == "tarnvod/north/gate/camera/" + std::to_string(camera) + "/frames") {
      numbers.push_back(message.json["sequence"]);
    }
  }
  return numbers;
}

std::string Listener::lines() const {
  std::string all;
  for (const Message& message : messages_) {
    all += message.text + '\n';
  }
  return all;
}

}  // namespace test
