// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "fleet/messages.h"

#include "base/text.h"
#include "base/wall_clock.h"

#include <nlohmann/json.hpp>

namespace tarn::command {
namespace {

std::string lineOf(const Json& json) {
  std::string text = oneLine(json);
  text.pop_back();
  return text;
}

Json rangesJson(const std::vector<FrameRange>& ranges) {
  Json array = Json::array();
  for (const FrameRange& range : ranges) {
    array.push_back({{"camera", range.camera}, {"start", range.start}, {"first", range.first}, {"last", range.last}});
  }
  return array;
}

std::vector<FrameRange> rangesOf(const Json& array) {
  std::vector<FrameRange> ranges;
  for (const Json& each : array) {
    ranges.push_back({each.at("camera").get<int>(), each.at("start").get<std::string>(),
                      each.at("first").get<std::uint64_t>(), each.at("last").get<std::uint64_t>()});
  }
  return ranges;
}

Json headOf(const char* schema, const Origin& origin) {
  return {{"schema", schema}, {"site", origin.site}, {"device", origin.device}, {"start", origin.start}};
}

Json cameraJson(const CameraReport& report) {
  const VOD::CameraStatus& status = report.status;
  return {{"camera", status.camera},
          {"state", nameOf(status.state)},
          {"reason", status.reason},
          {"since", report.since},
          {"framesReceived", status.framesReceived},
          {"framesHeldBack", status.framesHeldBack},
          {"interruptions", status.interruptions},
          {"numbered", report.numbered},
          {"overflowed", report.overflowed},
          {"detector", report.detector ? toJson(*report.detector) : Json(nullptr)}};
}

}  // namespace

std::string droppedJson(const Origin& origin, const FrameRange& frames) {
  return lineOf({{"schema", droppedSchema},
                 {"site", origin.site},
                 {"device", origin.device},
                 {"start", frames.start},
                 {"camera", frames.camera},
                 {"first", frames.first},
                 {"last", frames.last}});
}

std::string storedJson(const std::string& site, const std::string& device, const StoredFrames& stored) {
  return lineOf({{"schema", storedSchema},
                 {"site", site},
                 {"device", device},
                 {"frames", rangesJson(stored.frames)},
                 {"dropped", rangesJson(stored.dropped)}});
}

std::optional<StoredFrames> parseStored(std::string_view text) {
  try {
    const Json message = Json::parse(text);
    if (message.at("schema") != storedSchema) {
      return std::nullopt;
    }
    return StoredFrames{rangesOf(message.at("frames")), rangesOf(message.at("dropped"))};
  } catch (const Json::exception&) {
    return std::nullopt;
  }
}

std::string statusJson(const Origin& origin, const PublisherReport& report) {
  const WallTime now = wallTimeNow();
  Json message = headOf(statusSchema, origin);
  message["state"] = report.state;
  message["time"] = now.microseconds;
  message["clockSet"] = now.isSet;
  message["startedAt"] = report.startedAt;
  message["connections"] = report.sender.connections;
  message["keepsUntilStored"] = report.keepsUntilStored;
  message["spool"] = {{"bytes", report.spool.bytes},
                      {"limit", report.spoolLimit},
                      {"waiting", report.spool.waiting},
                      {"dropped", report.spool.dropped},
                      {"damaged", report.spool.damaged}};
  Json cameras = Json::array();
  for (const CameraReport& camera : report.cameras) {
    cameras.push_back(cameraJson(camera));
  }
  message["cameras"] = std::move(cameras);
  return lineOf(message);
}

std::string goneJson(const Origin& origin) {
  Json message = headOf(statusSchema, origin);
  message["state"] = "gone";
  return lineOf(message);
}

}  // namespace tarn::command
