// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_COMMAND_TOPICS_H
#define TARNVOD_COMMAND_TOPICS_H

#include <optional>
#include <string>
#include <string_view>
#include <vector>

/** The topics of a fleet: `tarnvod/SITE/DEVICE/...`. */
namespace tarn::command {

/** Whether it can name a site or a device: 1 to 64 of the characters A-Z, a-z, 0-9, '.', '_' and '-'. */
bool isFleetName(std::string_view name);

std::string framesTopic(const std::string& site, const std::string& device, int camera);
/** Of the notes that frames were dropped. */
std::string droppedTopic(const std::string& site, const std::string& device, int camera);
std::string statusTopic(const std::string& site, const std::string& device);
/** Of what a collector has stored. */
std::string storedTopic(const std::string& site, const std::string& device);

/** What to subscribe to for all that devices publish. @param site  empty for all sites */
std::vector<std::string> fleetTopics(const std::string& site);

/** A topic taken apart. */
struct FleetTopic {
  enum class Kind { Frames, Dropped, Status, Stored };

  std::string site;
  std::string device;
  int camera = 0;  ///< 0 where the topic is of the device
  Kind kind = Kind::Frames;
};

/** None for a topic that is not one of these. */
std::optional<FleetTopic> parseTopic(std::string_view topic);

}  // namespace tarn::command

#endif
