// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "http/listening_socket.h"

#include "base/errors.h"
#include "http/http_host.h"

#include <netdb.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <memory>
#include <system_error>
#include <utility>

namespace tarn::command {
namespace {

constexpr int backlog = 128;
/** What the system may hold for a browser that does not read. Connections inherit it. */
constexpr int sendBufferSize = 128 * 1024;

using Addresses = std::unique_ptr<addrinfo, decltype(&freeaddrinfo)>;

[[noreturn]] void fail(const std::string& address, int port, const std::string& reason) {
  throw Failure("cannot listen at " + hostAndPort(address, port) + ": " + reason);
}

Addresses resolve(const std::string& address, int port) {
  addrinfo hints{};
  hints.ai_flags = AI_PASSIVE | AI_NUMERICSERV;
  hints.ai_socktype = SOCK_STREAM;
  addrinfo* found = nullptr;
  const int error = getaddrinfo(address.c_str(), std::to_string(port).c_str(), &hints, &found);
  if (error != 0) {
    fail(address, port, gai_strerror(error));
  }
  return {found, &freeaddrinfo};
}

int boundPort(int descriptor) {
  sockaddr_storage address{};
  socklen_t length = sizeof address;
  getsockname(descriptor, reinterpret_cast<sockaddr*>(&address), &length);
  return ntohs(address.ss_family == AF_INET6 ? reinterpret_cast<const sockaddr_in6&>(address).sin6_port
                                             : reinterpret_cast<const sockaddr_in&>(address).sin_port);
}

}  // namespace

ListeningSocket::ListeningSocket(const std::string& address, int port) {
  const Addresses addresses = resolve(address, port);
  descriptor_ =
      socket(addresses->ai_family, addresses->ai_socktype | SOCK_CLOEXEC | SOCK_NONBLOCK, addresses->ai_protocol);
  const int yes = 1;
  // The port of a viewer that has just ended can be used again at once.
  setsockopt(descriptor_, SOL_SOCKET, SO_REUSEADDR, &yes, sizeof yes);
  setsockopt(descriptor_, SOL_SOCKET, SO_SNDBUF, &sendBufferSize, sizeof sendBufferSize);
  if (descriptor_ < 0 || bind(descriptor_, addresses->ai_addr, addresses->ai_addrlen) != 0 ||
      listen(descriptor_, backlog) != 0) {
    const int error = errno;
    close(release());
    fail(address, port, std::generic_category().message(error));
  }
  port_ = boundPort(descriptor_);
}

ListeningSocket::~ListeningSocket() {
  if (descriptor_ >= 0) {
    close(descriptor_);
  }
}

int ListeningSocket::release() {
  return std::exchange(descriptor_, -1);
}

}  // namespace tarn::command
