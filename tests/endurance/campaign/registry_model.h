// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_TESTS_ENDURANCE_CAMPAIGN_REGISTRY_MODEL_H
#define TARNVOD_TESTS_ENDURANCE_CAMPAIGN_REGISTRY_MODEL_H

#include "reference/detector_reference.h"
#include "support/system_log.h"

#include <tarnvod/handler.h>
#include <vod_host.h>

#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace tarn::test {

using Region = std::optional<VOD::VodChannelConfiguration>;

/** Numbers the callables that were set up; this one is none. */
inline constexpr int noCallback = 0;

/** A frame that must arrive: at whom, and what it holds. */
struct ExpectedFrame {
  int callback;
  int camera;
  VOD::DetectionData frame;
};

/** What became of subscriptions that were lost: dropped, never made, or gone with the service. */
struct Losses {
  int happened = 0;
  int dropped = 0;  ///< of these: the service ended a subscription that there was
  int recovered = 0;
  int abandoned = 0;  ///< the application tore the camera down before it was back
};

/**
 * What the handler's registry must be, do and say, independently of the library: plain maps and no locks. Every action
 * is done to the model and to the library; then the model says which calls the platform must have got, and which lines
 * the system log.
 */
class RegistryModel {
 public:
  /** What a camera that was set up has. */
  struct Subscription {
    int callback = noCallback;
    int subscriber = 0;
    std::set<std::string> classes;
    std::map<int, std::string> classNames;
    Region region;
  };

  // ---- What the service is like ----

  void setDetector(int camera, std::string bytes) { detectors_[camera] = std::move(bytes); }
  const std::string& detector(int camera) const { return detectors_.at(camera); }
  /** The call with this number, counted from now on, fails. */
  void planFault(vod::host::Function function, int call) { faults_.push_back({function, call, true, false}); }
  /** The service comes back while the call with this number runs. */
  void serviceReturnsWith(vod::host::Function function, int call) { faults_.push_back({function, call, false, true}); }
  void liftFaults() { faults_.clear(); }
  bool isServiceDown() const { return serviceIsDown_; }
  void bringServiceUp() { serviceIsDown_ = false; }
  void takeServiceDown();

  // ---- What is done ----

  bool setup(int camera, int callback, const std::set<std::string>& classes, const Region& region);
  void teardown(int camera);
  void dropSubscription(int camera);
  /** One round of the retry thread. */
  void retry();
  /** A scene is sent on the camera's channel; nothing when nobody must get it. */
  std::optional<ExpectedFrame> sendScene(int camera, const std::string& scene);

  /** Nothing stands for the exception that says that there is no subscriber. */
  std::optional<::VOD::DetectorInformation> detectorInformation(int camera);
  std::optional<std::map<std::string, std::set<std::string>>> supportedAttributes();
  bool serviceQuery(vod::host::Function function, const std::string& failureText);

  // ---- What must be true ----

  const std::map<int, Subscription>& active() const { return active_; }
  const std::map<int, Subscription>& pending() const { return pending_; }
  const Losses& losses() const { return losses_; }
  /** Calls and lines since these were last asked for. */
  std::vector<std::string> takeCalls() { return std::exchange(calls_, {}); }
  std::vector<LogLine> takeLog() { return std::exchange(log_, {}); }

 private:
  struct PlannedFault {
    vod::host::Function function;
    int callsLeft;
    bool fails;
    bool serviceReturns;
  };

  bool call(vod::host::Function function, const std::string& arguments);
  bool serviceCall(vod::host::Function function, const std::string& arguments);
  int create(int camera);
  ::VOD::DetectorInformation readInformation(int camera, int subscriber);
  std::optional<std::string> subscribe(int camera, Subscription& record, const std::set<std::string>& classes);
  std::optional<std::string> connect(int camera, Subscription& record);
  bool refreshAttributes(int camera);
  bool subscribeOrPark(int camera, Subscription record, const std::set<std::string>& classes);
  void logFailure(const std::string& text);

  std::map<int, std::string> detectors_;
  bool serviceIsDown_ = false;
  std::vector<PlannedFault> faults_;
  int lastSubscriber_ = 0;

  std::map<int, Subscription> active_;
  std::map<int, Subscription> pending_;
  std::map<int, ReferenceAttributes> attributes_;
  int failuresInARow_ = 0;

  Losses losses_;
  std::vector<std::string> calls_;
  std::vector<LogLine> log_;
};

}  // namespace tarn::test

#endif
