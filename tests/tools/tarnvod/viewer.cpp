// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "viewer.h"

#include <google/protobuf/io/coded_stream.h>
#include <google/protobuf/io/zero_copy_stream_impl.h>

#include <chrono>
#include <fstream>
#include <sstream>
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

/** Removes the headers of an answer from its front; false while they are not complete. */
bool removeHeaders(std::string& bytes) {
  const std::size_t end = bytes.find("\r\n\r\n");
  if (end == std::string::npos) {
    return false;
  }
  bytes.erase(0, end + 4);
  return true;
}

}  // namespace

Viewer::Viewer(std::vector<std::string> arguments, const Environment& environment)
    : process(commandWithServiceSwitch(), atAFreePort(std::move(arguments)), environment) {
  process.waitForOutput("/\n");
  port_ = std::stoi(process.output().substr(process.output().rfind(':') + 1));
}

Answer Viewer::get(const std::string& path, const std::multimap<std::string, std::string>& headers) const {
  return answerTo(port_, requestFor(path, port_, headers));
}

void Viewer::receive(const std::function<bool(const Event&)>& isLast) const {
  const auto deadline = std::chrono::steady_clock::now() + patience;
  Connection connection(port_);
  connection.send(requestFor("/events", port_));
  EventReader reader;
  std::string bytes;
  for (bool isStream = false; connection.receive(bytes) && std::chrono::steady_clock::now() < deadline;) {
    isStream = isStream || removeHeaders(bytes);
    if (!isStream) {
      continue;
    }
    reader.add(takeChunks(bytes));
    for (Event event; reader.next(event);) {
      if (isLast(event)) {
        return;
      }
    }
  }
  throw std::runtime_error("timed out waiting for an event");
}

long Viewer::peakMemoryKilobytes() const {
  std::ifstream status("/proc/" + std::to_string(process.id()) + "/status");
  for (std::string line; std::getline(status, line);) {
    if (line.rfind("VmHWM:", 0) == 0) {
      return std::stol(line.substr(line.find_first_of("0123456789")));
    }
  }
  throw std::runtime_error("the viewer has ended");
}

Connection Viewer::silentBrowser() const {
  Connection connection(port_, 4096);
  connection.send(requestFor("/events", port_));
  return connection;
}

void writeScenes(const std::filesystem::path& recording, const ::VOD::Scene& scene, int count) {
  std::ofstream file(recording / "scenes.pb", std::ios::binary);
  google::protobuf::io::OstreamOutputStream stream(&file);
  google::protobuf::io::CodedOutputStream output(&stream);
  const std::string bytes = scene.SerializeAsString();
  for (int each = 0; each < count; ++each) {
    output.WriteVarint32(static_cast<std::uint32_t>(bytes.size()));
    output.WriteString(bytes);
  }
}

}  // namespace test
