// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

// A world in which the faults of a given schedule happen.

#include "endurance/campaign/world.h"

#include <vod_host.h>

#include <algorithm>

namespace tarn::test {

namespace host = vod::host;
using vod::schedule::Fault;
using vod::schedule::Kind;
using vod::schedule::Schedule;
using vod::schedule::Step;
using vod::schedule::Time;

namespace {

constexpr Time second = std::chrono::seconds(1);
bool isGoingOn(const Fault& fault, Time now) {
  return fault.at < now + second && now < fault.end();
}

bool isSilent(const Schedule& schedule, Time now) {
  return std::any_of(schedule.faults.begin(), schedule.faults.end(),
                     [now](const Fault& fault) { return fault.kind == Kind::Silence && isGoingOn(fault, now); });
}

}  // namespace

void World::play(const Choose& choose, const Schedule& schedule) {
  const auto secondsOfRound = std::chrono::ceil<std::chrono::seconds>(schedule.length).count();
  const Time now = second * (played_++ % secondsOfRound);
  const StepKind& kind = anyStep(choose, false);
  begin(kind);
  for (const Step& step : stepsOf(schedule.faults)) {
    if (now <= step.at && step.at < now + second) {
      const Fault& fault = schedule.faults[step.fault];
      step.begins ? begin(choose, fault) : end(fault);
      liftFaults();
      check();
    }
  }
  for (const Fault& fault : schedule.faults) {
    if (isGoingOn(fault, now)) {
      goOn(choose, fault);
    }
  }
  const bool sends = std::string(kind.name).rfind("send", 0) == 0;
  if (!sends || !isSilent(schedule, now)) {
    kind.happen(*this, choose);
  }
  liftFaults();
  noteEndOfOutage();
  check();
}

void World::begin(const Choose& choose, const Fault& fault) {
  switch (fault.kind) {
    case Kind::Down:
      if (down_++ == 0) {
        happen(faultNow(Kind::Down));
      }
      break;
    case Kind::Drop:
      for (const int camera : camerasOf(fault)) {
        Fault drop = faultNow(Kind::Drop);
        drop.camera = camera;
        happen(drop);
      }
      break;
    case Kind::Hang:
      sendSceneDuringSlowCall(choose);
      break;
    case Kind::Burst:
      for (int i = 0; i < fault.count; ++i) {
        sendScene(choose);
      }
      break;
    case Kind::Lose:
    case Kind::Change:
      restartDetectors(choose, fault);
      break;
    default:  // goes on for some time, or concerns what frames say
      break;
  }
}

void World::end(const Fault& fault) {
  if (fault.kind == Kind::Down && --down_ == 0) {
    model_.bringServiceUp();
    host::bringServiceUp();
  }
}

void World::goOn(const Choose& choose, const Fault& fault) {
  if (fault.kind == Kind::Damage) {
    sendOddScene(choose);
  } else if (fault.kind == Kind::Refuse) {
    Fault refusal = faultNow(Kind::Refuse);
    refusal.function = fault.function;
    refusal.count = fault.count;
    happen(refusal);
  }
}

void World::restartDetectors(const Choose& choose, const Fault& fault) {
  for (const int camera : camerasOf(fault)) {
    const std::string detector = anyDetector(choose, camera);
    model_.setDetector(camera, detector);
    host::channel(camera - 1).detectorInformation(detector);
    Fault drop = faultNow(Kind::Drop);
    drop.camera = camera;
    happen(drop);
  }
}

std::vector<int> World::camerasOf(const Fault& fault) const {
  std::vector<int> cameras;
  for (int camera = 1; camera <= settings_.cameras; ++camera) {
    if (!fault.camera || *fault.camera == camera) {
      cameras.push_back(camera);
    }
  }
  return cameras;
}

}  // namespace tarn::test
