// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_DETAIL_CAMERA_SETUP_H
#define TARNVOD_DETAIL_CAMERA_SETUP_H

#include <tarnvod/camera_status.h>
#include <tarnvod/handler.h>

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <new>
#include <optional>
#include <set>
#include <stdexcept>
#include <string>
#include <system_error>
#include <utility>

namespace tarn::VOD::detail {

/** What came of an attempt: `Receiving`, or why not. */
struct SetupOutcome {
  CameraState state = CameraState::Receiving;
  std::string reason{};
  std::set<std::string> refusedClasses{};
};

/** What is already set up under the number: kept and updated, or ended first, which makes the region certain. */
enum class Existing { Keep, End };

/** Sets one camera up through the public functions of `Handler`. Not thread-safe. */
class CameraSetup {
 public:
  /**
   * @param classes  in any case; none for all that the detector knows
   * @throw std::invalid_argument  when the number is less than 1
   */
  CameraSetup(int camera, const std::set<std::string>& classes, std::optional<VodChannelConfiguration> region)
      : camera_(camera), classes_(inLowerCase(classes)), region_(region) {
    if (camera < 1) {
      throw std::invalid_argument("Cameras are counted from 1.");
    }
  }

  int camera() const { return camera_; }

  /** One attempt. Its outcome also says when memory ran out or a lock failed. */
  SetupOutcome attempt(const DetectionCallback& callback, Existing existing) noexcept {
    try {
      try {
        return setUp(callback, existing);
      } catch (const std::system_error& error) {
        return {CameraState::Waiting, std::string("the set-up failed: ") + error.what()};
      }
    } catch (const std::bad_alloc&) {
      return {CameraState::Waiting, "out of memory"};  // short enough for a string to hold without allocating
    }
  }

  /** Ends what is set up under the number: a pending set-up and an active one. @throw std::system_error */
  void end() const {
    Handler::teardown(camera_);
    Handler::teardown(camera_);
  }

 private:
  SetupOutcome setUp(const DetectionCallback& callback, Existing existing) {
    if (existing == Existing::End) {
      end();
    }
    const std::set<std::string> all = classes_.empty() ? askForClasses() : std::set<std::string>();
    if (classes_.empty() && all.empty()) {
      return {CameraState::Waiting, describeAbsence()};
    }
    if (Handler::setup(camera_, callback, classes_.empty() ? all : classes_, region_)) {
      absence_.clear();
      return {};
    }
    Handler::teardown(camera_);  // the library would go on without the classes
    return explainFailure();
  }

  SetupOutcome explainFailure() {
    const std::set<std::string> known = askForClasses();
    if (known.empty()) {
      return {CameraState::Waiting, describeAbsence()};
    }
    std::set<std::string> refused;
    std::set_difference(classes_.begin(), classes_.end(), known.begin(), known.end(),
                        std::inserter(refused, refused.end()));
    if (refused.empty()) {
      return {CameraState::Waiting, describeRefusal()};
    }
    end();  // what an earlier attempt left active has the names of a detector that is no longer there
    std::string reason = "the detector does not know " + joined(refused) + "; it knows " + joined(known);
    return {CameraState::Refused, std::move(reason), std::move(refused)};
  }

  /** The classes of the camera's detector; none when the service does not answer. */
  std::set<std::string> askForClasses() const {
    try {
      return Handler::getDetectorInformation(camera_).getClassifications().getClassNames();
    } catch (const std::system_error&) {
      throw;
    } catch (const std::runtime_error&) {
      return {};
    }
  }

  /** Why the service does not answer. Asked once in a row of failures, because the question fills the system log. */
  std::string describeAbsence() {
    if (absence_.empty()) {
      absence_ = askForAbsence();
    }
    return absence_;
  }

  std::string askForAbsence() const {
    if (!Handler::isDlpuEnabled()) {
      return "the service is disabled on this device";
    }
    const std::uint32_t channels = Handler::getNumberOfChannels();
    if (channels > 0 && static_cast<std::uint32_t>(camera_) > channels) {
      return "the service has no such camera, only " + std::to_string(channels);
    }
    return "the service does not answer";
  }

  std::string describeRefusal() const {
    std::string reason = "the service refuses the subscription";
    reason += region_ ? " with its region of interest" : "";
    const std::uint32_t limit = Handler::getNumberOfSimultaneousChannels();
    reason += limit > 0 ? " (it allows " + std::to_string(limit) + " at a time)" : "";
    return reason + "; the system log says why";
  }

  static std::set<std::string> inLowerCase(const std::set<std::string>& names) {
    const auto lowered = [](char letter) {
      return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
    };
    std::set<std::string> result;
    for (std::string name : names) {
      std::transform(name.begin(), name.end(), name.begin(), lowered);
      result.insert(std::move(name));
    }
    return result;
  }

  static std::string joined(const std::set<std::string>& names) {
    std::string text;
    for (const std::string& name : names) {
      text += (text.empty() ? "'" : ", '") + name + '\'';
    }
    return text;
  }

  const int camera_;
  const std::set<std::string> classes_;
  const std::optional<VodChannelConfiguration> region_;
  std::string absence_;
};

}  // namespace tarn::VOD::detail

#endif
