// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "base/service_manager.h"

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>

namespace tarn::command {
namespace {

std::string variable(const char* name) {
  // NOLINTNEXTLINE(concurrency-mt-unsafe): nothing changes the environment
  const char* const value = std::getenv(name);
  return value == nullptr ? "" : value;
}

}  // namespace

ServiceManager::ServiceManager() : socket_(variable("NOTIFY_SOCKET")) {
  const std::uint64_t limit = std::strtoull(variable("WATCHDOG_USEC").c_str(), nullptr, 10);
  period_ = std::chrono::microseconds(limit / 3);
}

void ServiceManager::reportReady() {
  send("READY=1");
}

void ServiceManager::reportAlive(Clock::time_point now) {
  if (period_ > Clock::duration{0} && now - sentAt_ >= period_) {
    sentAt_ = now;
    send("WATCHDOG=1");
  }
}

/** A failure is ignored: the manager that does not hear anything restarts the service. */
void ServiceManager::send(const std::string& message) const {
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  if (socket_.empty() || socket_.size() >= sizeof(address.sun_path)) {
    return;
  }
  std::memcpy(address.sun_path, socket_.data(), socket_.size());
  if (address.sun_path[0] == '@') {
    address.sun_path[0] = '\0';  // in the abstract namespace
  }
  const int descriptor = ::socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0);
  if (descriptor >= 0) {
    const auto length = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + socket_.size());
    static_cast<void>(::sendto(descriptor, message.data(), message.size(), MSG_NOSIGNAL,
                               reinterpret_cast<const sockaddr*>(&address), length));
    ::close(descriptor);
  }
}

}  // namespace tarn::command
