// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "fleet/topics.h"

#include <charconv>

namespace tarn::command {
namespace {

std::string deviceTopic(const std::string& site, const std::string& device) {
  return "tarnvod/" + site + '/' + device;
}

std::string cameraTopic(const std::string& site, const std::string& device, int camera) {
  return deviceTopic(site, device) + "/camera/" + std::to_string(camera);
}

std::vector<std::string_view> levelsOf(std::string_view topic) {
  std::vector<std::string_view> levels;
  for (std::size_t end = topic.find('/'); end != std::string_view::npos; end = topic.find('/')) {
    levels.push_back(topic.substr(0, end));
    topic.remove_prefix(end + 1);
  }
  levels.push_back(topic);
  return levels;
}

/** 0 for what is not a camera's number as this program writes it. */
int cameraIn(std::string_view text) {
  int camera = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), camera);
  const bool isNumber = error == std::errc{} && camera > 0 && std::to_string(camera) == text;
  return isNumber && end == text.data() + text.size() ? camera : 0;
}

}  // namespace

bool isFleetName(std::string_view name) {
  constexpr std::string_view characters = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789._-";
  constexpr std::size_t longest = 64;
  return !name.empty() && name.size() <= longest && name.find_first_not_of(characters) == std::string_view::npos;
}

std::string framesTopic(const std::string& site, const std::string& device, int camera) {
  return cameraTopic(site, device, camera) + "/frames";
}

std::string droppedTopic(const std::string& site, const std::string& device, int camera) {
  return cameraTopic(site, device, camera) + "/dropped";
}

std::string statusTopic(const std::string& site, const std::string& device) {
  return deviceTopic(site, device) + "/status";
}

std::string storedTopic(const std::string& site, const std::string& device) {
  return deviceTopic(site, device) + "/stored";
}

std::vector<std::string> fleetTopics(const std::string& site) {
  const std::string sites = site.empty() ? "+" : site;
  return {"tarnvod/" + sites + "/+/camera/+/frames", "tarnvod/" + sites + "/+/camera/+/dropped",
          statusTopic(sites, "+")};
}

std::optional<FleetTopic> parseTopic(std::string_view topic) {
  const std::vector<std::string_view> levels = levelsOf(topic);
  if (levels.size() < 4 || levels[0] != "tarnvod" || !isFleetName(levels[1]) || !isFleetName(levels[2])) {
    return std::nullopt;
  }
  FleetTopic parsed{std::string(levels[1]), std::string(levels[2]), 0, FleetTopic::Kind::Status};
  if (levels.size() == 4 && (levels[3] == "status" || levels[3] == "stored")) {
    parsed.kind = levels[3] == "status" ? FleetTopic::Kind::Status : FleetTopic::Kind::Stored;
    return parsed;
  }
  const bool isOfCamera =
      levels.size() == 6 && levels[3] == "camera" && (levels[5] == "frames" || levels[5] == "dropped");
  parsed.camera = isOfCamera ? cameraIn(levels[4]) : 0;
  if (parsed.camera == 0) {
    return std::nullopt;
  }
  parsed.kind = levels[5] == "frames" ? FleetTopic::Kind::Frames : FleetTopic::Kind::Dropped;
  return parsed;
}

}  // namespace tarn::command
