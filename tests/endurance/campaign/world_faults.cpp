// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

// What goes wrong with the service of a world: drawn as the faults of a schedule, done to the library and to the model.

#include "endurance/campaign/world.h"

#include <vod_host.h>

#include <algorithm>

namespace tarn::test {

namespace host = vod::host;
using host::Function;
using vod::schedule::Fault;
using vod::schedule::Kind;
using vod::schedule::Schedule;

namespace {

constexpr vod::schedule::Time stepLength = std::chrono::seconds(1);
/** After the last fault, until an application must have recovered. */
constexpr vod::schedule::Time patience = std::chrono::seconds(15);
constexpr int failure = 5;  // any code but 0
/** More than a step makes. */
constexpr int manyCalls = 200;

Function functionNamed(const std::string& name) {
  return *std::find_if(host::everyFunction.begin(), host::everyFunction.end(),
                       [&](Function function) { return host::name(function) == name; });
}

}  // namespace

Fault World::faultNow(Kind kind) const {
  Fault fault;
  fault.kind = kind;
  fault.at = stepLength * steps_;
  fault.duration = formOf(kind).hasDuration ? stepLength : vod::schedule::Time(0);
  return fault;
}

void World::drop(const Choose& choose) {
  Fault fault = faultNow(Kind::Drop);
  fault.camera = anyChannel(choose);
  happen(fault);
}

void World::toggleService() {
  if (model_.isServiceDown()) {
    done_.back() += ": up";
    model_.bringServiceUp();
    host::bringServiceUp();
  } else {
    happen(faultNow(Kind::Down));
  }
}

void World::refuseACall(const Choose& choose) {
  Fault fault = faultNow(Kind::Refuse);
  fault.function = host::name(host::everyFunction[choose(host::everyFunction.size())]);
  fault.count = 1 + static_cast<int>(choose(3));
  happen(fault);
  if (choose(6) == 0) {
    done_.back() += ", the service returns";
    const Function function = functionNamed(fault.function);
    host::plan(host::Fault(function).onCall(fault.count).bringsServiceUp());
    model_.serviceReturnsWith(function, fault.count);
  }
}

void World::happen(const Fault& fault) {
  done_.back() += ": " + toText(fault);
  faults_.push_back(fault);
  switch (fault.kind) {
    case Kind::Drop:
      model_.dropSubscription(*fault.camera);
      host::channel(*fault.camera - 1).dropSubscriptions();
      host::drain();
      break;
    case Kind::Down:
      outage_ = faults_.size() - 1;
      callsAreOrdered_ = false;  // the cameras' threads run side by side
      model_.takeServiceDown();
      host::takeServiceDown();
      host::drain();
      break;
    case Kind::Refuse:
      refuse(functionNamed(fault.function), fault.count);
      break;
    default:  // What is wrong with a frame, or a call that takes long, is done where it is sent or called.
      break;
  }
}

void World::refuse(Function function, int call) {
  host::Fault planned(function);
  static_cast<void>(call > 0 ? planned.onCall(call) : planned.always());
  host::plan(planned.failsWith(function == Function::ServiceIsEnabled ? 0 : failure));
  for (int each = call > 0 ? call : 1; each <= (call > 0 ? call : manyCalls); ++each) {
    model_.planFault(function, each);
  }
}

void World::noteEndOfOutage() {
  if (outage_ && !model_.isServiceDown()) {
    Fault& outage = faults_[*outage_];
    outage.duration = std::max(stepLength, stepLength * steps_ - outage.at);
    outage_.reset();
  }
}

Schedule World::faults() const {
  Schedule schedule;
  schedule.faults = faults_;
  if (outage_) {
    Fault& outage = schedule.faults[*outage_];
    outage.duration = std::max(stepLength, stepLength * steps_ - outage.at);
  }
  schedule.length = stepLength * (steps_ + 1) + patience;
  return schedule;
}

}  // namespace tarn::test
