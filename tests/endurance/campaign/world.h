// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_TESTS_ENDURANCE_CAMPAIGN_WORLD_H
#define TARNVOD_TESTS_ENDURANCE_CAMPAIGN_WORLD_H

#include "endurance/campaign/arrivals.h"
#include "endurance/campaign/registry_model.h"
#include "endurance/campaign/test_data.h"
#include "support/retry_sleep.h"

#include <schedule/schedule.h>

#include <cstdint>
#include <functional>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

namespace tarn::test {

/** The library and the model disagree; the text says after which step and on what. */
class Disagreement : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/** What a world is like from its beginning to its end. */
struct WorldSettings {
  int cameras = 1;
  bool deleteWaitsForCallbacks = true;
  bool oneThreadForAll = false;
  bool sceneDuringSubscribe = false;
  bool teardownDuringDetection = false;
};

WorldSettings anySettings(const Choose& choose);
std::string toString(const WorldSettings& settings);

/**
 * The library on the host platform, and its model. A step is done to both and brought to its end; then what
 * the platform was asked, what was logged and which frames arrived is compared. One object at a time.
 */
class World {
 public:
  explicit World(const WorldSettings& settings);
  ~World();
  World(const World&) = delete;
  World& operator=(const World&) = delete;

  /** Does any step. @throw Disagreement */
  void step(const Choose& choose);

  /**
   * Does any step of the application. What goes wrong with the service is not drawn, but what begins, goes on or ends in the next second of
   * the schedule. Of its frames only their number and their bytes are according to it: the world's own say nothing of time and classes.
   *
   * @throw Disagreement
   */
  void play(const Choose& choose, const vod::schedule::Schedule& schedule);

  /**
   * Mends the service, sees every camera that was lost come back and receive a frame again, and tears all down.
   *
   * @throw Disagreement
   */
  void end(const Choose& choose);

  const Losses& losses() const { return model_.losses(); }
  int frames() const { return frames_; }
  int steps() const { return steps_; }
  /**
   * What has gone wrong with the service so far, with a second for each step: as the day of an application, which the
   * host platform and `tarnvod rehearse` execute.
   */
  vod::schedule::Schedule faults() const;

 private:
  using Action = std::function<void()>;

  /** A step that can be drawn, more often the larger its weight. */
  struct StepKind {
    std::uint32_t weight;
    const char* name;
    bool isFault;
    std::function<void(World&, const Choose&)> happen;
  };
  static const std::vector<StepKind>& stepKinds();
  static const StepKind& anyStep(const Choose& choose, bool withFaults);
  void begin(const StepKind& kind);

  // Each does one thing to the library and to the model.
  void setup(const Choose& choose, int camera);
  void teardown(int camera);
  void ask(const Choose& choose);
  void askForDetector(int camera);
  void askForAttributes();
  void askForClasses();
  void askTheService(const Choose& choose);
  void retry();
  void changeDetector(const Choose& choose);

  // What goes wrong is drawn as a fault of a schedule, which then happens to the library and to the model.
  void drop(const Choose& choose);
  void toggleService();
  void refuseACall(const Choose& choose);
  void begin(const Choose& choose, const vod::schedule::Fault& fault);
  void end(const vod::schedule::Fault& fault);
  void goOn(const Choose& choose, const vod::schedule::Fault& fault);
  void restartDetectors(const Choose& choose, const vod::schedule::Fault& fault);
  std::vector<int> camerasOf(const vod::schedule::Fault& fault) const;
  void happen(const vod::schedule::Fault& fault);
  /** @param call  which of the calls from now on; 0 for all of them */
  void refuse(vod::host::Function function, int call);
  vod::schedule::Fault faultNow(vod::schedule::Kind kind) const;
  /** Calls of the function take long. */
  vod::schedule::Fault hanging(vod::host::Function function) const;
  /** The present outage ends with the present step, if it has ended. */
  void noteEndOfOutage();

  void sendScene(const Choose& choose);
  void sendOddScene(const Choose& choose);
  void sendSceneThatActs(const Choose& choose);
  void sendSceneThatThrows(const Choose& choose);
  void sendSceneThatTakesLong(const Choose& choose);
  void sendSceneDuringSlowCall(const Choose& choose);

  Action anyHandlerCall(const Choose& choose);
  void sendSceneDuringSlowSetup(const Choose& choose, int camera);
  void sendSceneDuringSlowTeardown(const Choose& choose, int camera);
  void expect(const std::optional<ExpectedFrame>& frame);
  /** Notes a disagreement for the next check: it may come up in a callback, which must not be left by it. */
  void agree(bool agreed, const std::string& onWhat);
  int anyCamera(const Choose& choose) const;
  /** A camera of the service, be it subscribed or not. */
  int anyChannel(const Choose& choose) const;
  void liftFaults();
  void check();
  [[noreturn]] void disagree(const std::string& what) const;

  WorldSettings settings_;
  SystemLog log_;
  RetrySleep sleep_;
  Arrivals arrivals_;
  RegistryModel model_;
  std::vector<ExpectedFrame> expected_;
  std::vector<vod::schedule::Fault> faults_;
  std::optional<std::size_t> outage_;  ///< the one of the faults that has not ended
  int steps_ = 0;
  int played_ = 0;                 ///< seconds of a schedule
  int down_ = 0;                   ///< outages of a schedule that have not ended
  std::vector<std::string> done_;  ///< the steps so far, for whoever looks into a disagreement
  std::string disagreement_;
  bool callsAreOrdered_ = true;
  int frames_ = 0;
  int expectedExceptions_ = 0;
};

}  // namespace tarn::test

#endif
