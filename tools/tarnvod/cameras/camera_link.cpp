// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "cameras/camera_link.h"

#include "base/errors.h"
#include "base/text.h"
#include "cameras/service.h"

#include <algorithm>
#include <utility>

namespace tarn::command {
namespace {

/** The classes to set up. @throw Failure for those that the detector does not know */
std::set<std::string> chooseClasses(const Request& request, int camera, const VOD::Classifications& known) {
  if (request.classes.empty()) {
    return known.getClassNames();
  }
  for (const std::string& name : request.classes) {
    if (!known.areAllClassesSupported({name})) {
      throw Failure("camera " + std::to_string(camera) + ": the detector does not know the class '" + name +
                    "'; it knows " + joined(known.getClassNames(), ", "));
    }
  }
  return request.classes;
}

}  // namespace

CameraLink::CameraLink(int camera, Request request, std::shared_ptr<ArrivalQueue> queue)
    : camera_(camera),
      request_(std::move(request)),
      queue_(std::move(queue)),
      lastSign_(Clock::now()),
      lastTry_(lastSign_) {}

CameraLink::~CameraLink() {
  VOD::Handler::teardown(camera_);
}

void CameraLink::connect() {
  lastTry_ = Clock::now();
  const auto detector = lookUpDetector(camera_);
  serviceAnswers_ = detector.has_value();
  if (!detector) {
    state_ = State::Waiting;
    return;
  }
  const auto deliver = [queue = queue_, setup = ++setups_](std::unique_ptr<VOD::DetectionData> frame, int camera) {
    queue->push({camera, setup, Clock::now(), std::move(frame)});
  };
  const auto classes = chooseClasses(request_, camera_, detector->getClassifications());
  const bool wasWaiting = state_ == State::Waiting;
  const bool isSetUp = VOD::Handler::setup(camera_, deliver, classes, request_.region);
  state_ = isSetUp ? State::Receiving : State::Waiting;
  if (isSetUp && wasWaiting) {
    firstTrustedSetup_ = setups_;
    lastSign_ = Clock::now();
  }
}

bool CameraLink::accept(const Arrival& arrival) {
  const Clock::duration silence = arrival.at - lastSign_;
  if (state_ == State::Silent) {
    lastInterruption_ = silence;
    firstTrustedSetup_ = setups_ + 1;
  } else if (state_ == State::Receiving && received_) {
    learnInterval(silence);
  }
  if (state_ != State::Receiving || silence >= retryPeriod) {
    connect();
  }
  lastSign_ = std::max(lastSign_, arrival.at);
  const bool hasAllDetections = arrival.setup >= firstTrustedSetup_ || !arrival.frame->detections.empty();
  const bool isShown = state_ == State::Receiving && hasAllDetections;
  received_ = received_ || isShown;
  return isShown;
}

void CameraLink::tick(Clock::time_point now) {
  if (state_ == State::Receiving && now - lastSign_ >= longestNormalSilence()) {
    state_ = State::Silent;
    interruptions_ += received_ ? 1 : 0;
    ask(now);
  } else if (state_ == State::Silent && now - lastTry_ >= retryPeriod) {
    ask(now);
  } else if (state_ == State::Waiting && now - lastTry_ >= retryPeriod) {
    connect();
  }
}

void CameraLink::ask(Clock::time_point now) {
  serviceAnswers_ = lookUpDetector(camera_).has_value();
  lastTry_ = now;
}

std::string CameraLink::problem(Clock::time_point now) const {
  const std::string retry = "trying again every " + std::to_string(retryPeriod.count()) + " s";
  if (state_ == State::Waiting) {
    return (serviceAnswers_ ? "the service refuses the subscription (the system log says why); "
                            : "the service does not answer; ") +
           retry;
  }
  if (state_ == State::Receiving) {
    return "";
  }
  if (recordingHasEnded(camera_)) {
    return "the recording has ended; TARNVOD_HOST_LOOP=1 would repeat it";
  }
  const double seconds = std::chrono::duration<double>(now - lastSign_).count();
  return "no frame for " + fixed(seconds, 1) + " s; the service " +
         (serviceAnswers_ ? "answers; the library renews a dropped subscription"
                          : "does not answer; the library tries again") +
         " every " + std::to_string(retryPeriod.count()) + " s";
}

Clock::duration CameraLink::longestNormalSilence() const {
  return std::max<Clock::duration>(retryPeriod, 3 * usualInterval_);
}

void CameraLink::learnInterval(Clock::duration interval) {
  usualInterval_ = usualInterval_ == Clock::duration{0} ? interval : (7 * usualInterval_ + interval) / 8;
}

}  // namespace tarn::command
