// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef VOD_HOST_REHEARSAL_REHEARSAL_H
#define VOD_HOST_REHEARSAL_REHEARSAL_H

#include "rehearsal/scene_player.h"
#include "replay/environment.h"
#include "schedule/schedule.h"

#include <vod_host.h>

#include <chrono>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace vod::host {

/** Executes a schedule on the service of this process, on a thread of its own. */
class Rehearsal {
 public:
  /**
   * Executes the schedule that the environment names, if it names one, from the first call on. What is wrong with it
   * fails every call, as an invalid variable does. Every call of the C interface begins with this.
   */
  static void beginIfNamed();

 private:
  using Clock = std::chrono::steady_clock;

  static void beginNamed(const RehearsalFiles& files);

  Rehearsal(schedule::Schedule schedule, const std::vector<std::string>& folders);

  void run();
  void runRound(Clock::time_point begin);
  static void waitUntil(Clock::time_point time);

  void take(const schedule::Step& step);
  void begin(const schedule::Fault& fault, std::size_t number);
  void end(const schedule::Fault& fault, std::size_t number);
  void beginCallFault(const schedule::Fault& fault, std::size_t number);
  void endCallFault(std::size_t number);
  void change(const schedule::Fault& fault, int by);
  void loseClass(int number, int place, bool isLost);
  void restartDetector(int number);
  void goDown(int by);

  void sendScenes(const std::optional<int>& onlyTo, int count);
  std::vector<int> channelsOf(const schedule::Fault& fault) const;

  const schedule::Schedule schedule_;
  const std::vector<schedule::Step> steps_;
  std::size_t nextStep_ = 0;
  const Clock::time_point begin_ = Clock::now();
  std::vector<ScenePlayer> players_;  // in the order of the channels
  int down_ = 0;

  /** A planned fault of a function, and where its calls wait. */
  struct CallFault {
    int planned;
    std::optional<Gate> gate;
  };
  std::map<std::size_t, CallFault> callFaults_;
};

}  // namespace vod::host

#endif
