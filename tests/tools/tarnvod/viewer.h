// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_TESTS_TOOLS_TARNVOD_VIEWER_H
#define TARNVOD_TESTS_TOOLS_TARNVOD_VIEWER_H

#include "http_client.h"
#include "process.h"

#include <nlohmann/json.hpp>
#include <tarnvod/video_object_detection.pb.h>

#include <filesystem>
#include <functional>
#include <map>
#include <string>
#include <vector>

namespace test {

/** What the viewer may have in memory at most, whatever it is sent. */
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
inline constexpr long viewerMemoryKilobytes = 1024L * 1024L;  // sanitizers keep records of all memory
#else
inline constexpr long viewerMemoryKilobytes = 64L * 1024L;
#endif

/** A server-sent event. */
struct Event {
  std::string name;
  std::string data;  ///< as it came

  nlohmann::json json() const { return nlohmann::json::parse(data); }
};

/** `tarnvod view` at a free port, with a service that can be taken down; and a browser's part. */
class Viewer {
 public:
  Viewer(std::vector<std::string> arguments, const Environment& environment);

  int port() const { return port_; }
  Answer get(const std::string& path, const std::multimap<std::string, std::string>& headers = {}) const;

  /** Receives events until one is the last that was waited for. Fails the test after a long time. */
  void receive(const std::function<bool(const Event&)>& isLast) const;

  /** A connection on which events were requested and nothing is read; it has small buffers. */
  Connection silentBrowser() const;

  /** The most that the viewer has had in memory. Fails the test when it has ended. */
  long peakMemoryKilobytes() const;

  Process process;

 private:
  int port_ = 0;
};

/** Replaces a recording's scenes by one scene again and again. */
void writeScenes(const std::filesystem::path& recording, const ::VOD::Scene& scene, int count);

}  // namespace test

#endif
