// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "http_client.h"

#include <arpa/inet.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdint>
#include <sstream>
#include <stdexcept>
#include <utility>

namespace test {
namespace {

constexpr timeval patience{60, 0};

}  // namespace

std::string Answer::header(const std::string& name) const {
  const auto found = headers.find(name);
  return found == headers.end() ? "" : found->second;
}

Connection::Connection(int port, int receiveBuffer) : socket_(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
  if (receiveBuffer != 0) {
    setsockopt(socket_, SOL_SOCKET, SO_RCVBUF, &receiveBuffer, sizeof receiveBuffer);
  }
  setsockopt(socket_, SOL_SOCKET, SO_RCVTIMEO, &patience, sizeof patience);
  setsockopt(socket_, SOL_SOCKET, SO_SNDTIMEO, &patience, sizeof patience);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(static_cast<std::uint16_t>(port));
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  if (connect(socket_, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
    throw std::runtime_error("no connection");
  }
}

Connection::~Connection() {
  if (socket_ >= 0) {
    close(socket_);
  }
}

Connection::Connection(Connection&& other) noexcept : socket_(std::exchange(other.socket_, -1)) {}

bool Connection::send(std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t sent = ::send(socket_, bytes.data(), bytes.size(), MSG_NOSIGNAL);
    if (sent <= 0) {
      return false;
    }
    bytes.remove_prefix(static_cast<std::size_t>(sent));
  }
  return true;
}

void Connection::endSending() {
  shutdown(socket_, SHUT_WR);
}

bool Connection::receive(std::string& bytes) {
  std::array<char, 65536> buffer;
  const ssize_t count = recv(socket_, buffer.data(), buffer.size(), 0);
  if (count < 0 && errno == EAGAIN) {
    throw std::runtime_error("timed out waiting for an answer");
  }
  if (count <= 0) {
    return false;
  }
  bytes.append(buffer.data(), static_cast<std::size_t>(count));
  return true;
}

std::string Connection::receiveAll() {
  std::string bytes;
  while (receive(bytes)) {
  }
  return bytes;
}

std::string Connection::receiveLine() {
  std::string bytes;
  while (bytes.find("\r\n") == std::string::npos && receive(bytes)) {
  }
  return bytes.substr(0, bytes.find("\r\n"));
}

std::string requestFor(const std::string& path, int port, const std::multimap<std::string, std::string>& headers) {
  std::string request = "GET " + path + " HTTP/1.1\r\n";
  if (headers.count("Host") == 0) {
    request += "Host: 127.0.0.1:" + std::to_string(port) + "\r\n";
  }
  for (const auto& [name, value] : headers) {
    request.append(name).append(": ").append(value).append("\r\n");
  }
  return request + "\r\n";
}

Answer parseAnswer(const std::string& text) {
  const std::size_t end = text.find("\r\n\r\n");
  if (end == std::string::npos) {
    throw std::runtime_error("no answer: \"" + text + '"');
  }
  Answer answer;
  std::istringstream lines(text.substr(0, end));
  std::string line;
  std::getline(lines, line);
  answer.status = std::stoi(line.substr(line.find(' ')));
  while (std::getline(lines, line)) {
    const std::size_t colon = line.find(": ");
    answer.headers.emplace(line.substr(0, colon), line.substr(colon + 2, line.find('\r') - colon - 2));
  }
  answer.body = text.substr(end + 4);
  return answer;
}

std::string takeChunks(std::string& body) {
  std::string content;
  for (std::size_t line = body.find("\r\n"); line != std::string::npos; line = body.find("\r\n")) {
    const std::size_t size = std::stoul(body.substr(0, line), nullptr, 16);
    const std::size_t end = line + 2 + size + 2;
    if (size == 0 || body.size() < end) {
      break;
    }
    content.append(body, line + 2, size);
    body.erase(0, end);
  }
  return content;
}

Answer answerTo(int port, const std::string& request) {
  Connection connection(port);
  connection.send(request);
  return parseAnswer(connection.receiveAll());
}

}  // namespace test
