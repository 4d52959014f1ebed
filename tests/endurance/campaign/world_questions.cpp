// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

// What can be asked in a world; the library's answer is compared with the model's.

#include "endurance/campaign/world.h"

#include <tarnvod/video_object_detection.pb.h>
#include <vod_host.h>

#include <optional>
#include <stdexcept>

namespace tarn::test {

namespace host = vod::host;
using host::Function;
using VOD::Handler;

namespace {

/** The answer, or nothing when the question was answered by the exception that says that there is no subscriber. */
template <typename Question>
auto answerTo(Question question) -> std::optional<decltype(question())> {
  try {
    return question();
  } catch (const std::runtime_error& error) {
    if (error.what() != std::string("Failed to create subscription to vod.")) {
      throw;
    }
    return std::nullopt;
  }
}

}  // namespace

void World::ask(const Choose& choose) {
  switch (choose(4)) {
    case 0:
      askForDetector(anyCamera(choose));
      break;
    case 1:
      askForAttributes();
      break;
    case 2:
      askForClasses();
      break;
    default:
      askTheService(choose);
  }
}

void World::askForDetector(int camera) {
  done_.back() += ": for the detector of camera " + std::to_string(camera);
  const auto expected = model_.detectorInformation(camera);
  const auto answer = answerTo([camera] { return Handler::getDetectorInformation(camera); });
  agree(answer.has_value() == expected.has_value(), "whether there is a detector");
  if (answer && expected) {
    const auto difference = differenceFrom(*expected, *answer);
    agree(!difference, "the detector's " + difference.value_or(""));
  }
}

void World::askForAttributes() {
  done_.back() += ": for the attributes";
  agree(Handler::getSupportedAttributes() == model_.supportedAttributes(), "the supported attributes");
}

void World::askForClasses() {
  done_.back() += ": for the classes";
  std::optional<std::set<std::string>> expected;
  if (const auto information = model_.detectorInformation(1)) {
    expected.emplace();
    for (const auto& [name, id] : classIdsByName(*information)) {
      expected->insert(name);
    }
  }
  agree(answerTo([] { return Handler::getSupportedClasses(); }) == expected, "the supported classes");
}

void World::askTheService(const Choose& choose) {
  done_.back() += ": the service";
  const auto cameras = static_cast<std::uint32_t>(settings_.cameras);
  switch (choose(4)) {
    case 0: {
      const bool answers = model_.serviceQuery(
          Function::GetNbrChannels, "Unable to get number of channels from video_object_detection_subscriber\n");
      agree(Handler::getNumberOfChannels() == (answers ? cameras : 0), "the number of channels");
      break;
    }
    case 1: {
      const bool answers =
          model_.serviceQuery(Function::GetNbrChannelsSimultaneously,
                              "Unable to get number of simultaneous channels from video_object_detection_subscriber\n");
      agree(Handler::getNumberOfSimultaneousChannels() == (answers ? cameras : 0), "the simultaneous channels");
      break;
    }
    case 2: {
      const bool answers = model_.serviceQuery(Function::GetVersion, "Failed to get the version of the vod lib: 5\n");
      agree(Handler::getServiceVersion() == (answers ? "1.0" : ""), "the version");
      break;
    }
    default:
      agree(Handler::isDlpuEnabled() == model_.serviceQuery(Function::ServiceIsEnabled, ""), "whether it is enabled");
  }
}

}  // namespace tarn::test
