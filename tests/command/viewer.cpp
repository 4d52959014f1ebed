// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "viewer.h"

#include <arpa/inet.h>
#include <httplib.h>
#include <sys/socket.h>
#include <unistd.h>

#include <chrono>
#include <stdexcept>

namespace test {
namespace {

constexpr std::chrono::seconds patience{60};

/** Cuts whole events off the front of what has come so far. */
class EventReader {
 public:
  void add(std::string_view text) { text_ += text; }

  bool next(Event& event) {
    const std::size_t end = text_.find("\n\n");
    if (end == std::string::npos) {
      return false;
    }
    event = {};
    std::istringstream lines(text_.substr(0, end));
    for (std::string line; std::getline(lines, line);) {
      const std::size_t colon = line.find(": ");
      (line.compare(0, colon, "event") == 0 ? event.name : event.data) = line.substr(colon + 2);
    }
    text_.erase(0, end + 2);
    return true;
  }

 private:
  std::string text_;
};

std::vector<std::string> atAFreePort(std::vector<std::string> arguments) {
  arguments.insert(arguments.begin(), {"view", "--port", "0"});
  return arguments;
}

}  // namespace

std::string Answer::header(const std::string& name) const {
  const auto found = headers.find(name);
  return found == headers.end() ? "" : found->second;
}

Viewer::Viewer(std::vector<std::string> arguments, const Environment& environment)
    : process(commandWithServiceSwitch(), atAFreePort(std::move(arguments)), environment) {
  process.waitForOutput("/\n");
  port_ = std::stoi(process.output().substr(process.output().rfind(':') + 1));
}

Answer Viewer::get(const std::string& path, const std::multimap<std::string, std::string>& headers) const {
  httplib::Client client("127.0.0.1", port_);
  client.set_read_timeout(patience);
  const auto result = client.Get(path.c_str(), httplib::Headers(headers.begin(), headers.end()));
  if (!result) {
    throw std::runtime_error("no answer: " + httplib::to_string(result.error()));
  }
  return {result->status, {result->headers.begin(), result->headers.end()}, result->body};
}

void Viewer::receive(const std::function<bool(const Event&)>& isLast) const {
  const auto deadline = std::chrono::steady_clock::now() + patience;
  EventReader reader;
  bool isDone = false;
  httplib::Client client("127.0.0.1", port_);
  client.set_read_timeout(patience);
  client.Get("/events", [&](const char* data, std::size_t size) {
    reader.add({data, size});
    for (Event event; !isDone && reader.next(event);) {
      isDone = isLast(event);
    }
    return !isDone && std::chrono::steady_clock::now() < deadline;
  });
  if (!isDone) {
    throw std::runtime_error("waited in vain for an event");
  }
}

SilentBrowser::SilentBrowser(int port) : socket_(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
  const int smallBuffer = 4096;
  setsockopt(socket_, SOL_SOCKET, SO_RCVBUF, &smallBuffer, sizeof smallBuffer);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(static_cast<std::uint16_t>(port));
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  const std::string request = "GET /events HTTP/1.1\r\nHost: 127.0.0.1:" + std::to_string(port) + "\r\n\r\n";
  if (connect(socket_, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0 ||
      write(socket_, request.data(), request.size()) != static_cast<ssize_t>(request.size())) {
    throw std::runtime_error("no connection");
  }
}

SilentBrowser::~SilentBrowser() {
  close(socket_);
}

std::string SilentBrowser::statusLine() const {
  std::string line;
  for (char next = 0; read(socket_, &next, 1) == 1 && next != '\r';) {
    line += next;
  }
  return line;
}

}  // namespace test
