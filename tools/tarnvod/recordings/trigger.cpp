// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "recordings/trigger.h"

#include "base/errors.h"
#include "base/unit_options.h"

#include <algorithm>

namespace tarn::command {
namespace {

constexpr const char* classPrefix = "class:";
constexpr const char* silencePrefix = "silence:";

/** What follows the prefix; none when the text does not begin with it. */
std::optional<std::string> behind(const std::string& prefix, const std::string& text) {
  return text.size() > prefix.size() && text.compare(0, prefix.size(), prefix) == 0
             ? std::make_optional(text.substr(prefix.size()))
             : std::nullopt;
}

}  // namespace

Triggers::Triggers(const std::vector<std::string>& names) {
  for (const std::string& name : names) {
    add(name);
  }
}

void Triggers::add(const std::string& name) {
  if (const auto className = behind(classPrefix, name)) {
    classes_.insert(*className);
  } else if (const auto seconds = behind(silencePrefix, name); seconds && parseDuration(*seconds)) {
    silence_ = static_cast<std::int64_t>(*parseDuration(*seconds));
  } else if (name == "deleted") {
    deleted_ = true;
  } else if (name == "connected") {
    connected_ = true;
  } else if (name == "signal") {
    signal_ = true;
  } else {
    throw UsageError("--on: '" + name + "' is not one of class:NAME, deleted, connected, silence:TIME, signal");
  }
}

bool Triggers::isIn(const ::VOD::Scene& scene, const SceneNames& names) const {
  const auto hasClass = [&](const auto& detection) {
    return classes_.count(names.className(detection.class_id())) != 0;
  };
  const auto hasAction = [&](const auto& event) {
    return (deleted_ && event.action() == ::VOD::EVENT_DELETE) ||
           (connected_ && event.action() == ::VOD::EVENT_CONNECT);
  };
  return (!classes_.empty() && std::any_of(scene.detections().begin(), scene.detections().end(), hasClass)) ||
         std::any_of(scene.events().begin(), scene.events().end(), hasAction);
}

}  // namespace tarn::command
