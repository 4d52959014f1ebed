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

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
inline constexpr bool isSanitized = true;
#else
inline constexpr bool isSanitized = false;
#endif

/** What the viewer may have in memory at most, whatever it is sent. Sanitizers keep records of all memory. */
inline constexpr long viewerMemoryKilobytes = (isSanitized ? 1024L : 64L) * 1024L;

/** How many ask for long answers and do not read them: their answers are more than the viewer sends at once. With
 * a sanitizer, making an answer takes ten times as long. */
inline constexpr int silentReaders = isSanitized ? 48 : 300;

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
