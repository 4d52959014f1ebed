// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "endurance/campaign/registry_model.h"

#include <tarnvod/video_object_detection.pb.h>

#include <sstream>
#include <utility>

namespace tarn::test {

using vod::host::Function;

namespace {

std::string handleText(int subscriber) {
  return '#' + std::to_string(subscriber);
}

std::string channelText(int camera) {
  return "channel=" + std::to_string(camera - 1);
}

std::string regionText(const VOD::VodChannelConfiguration& region) {
  std::ostringstream text;
  text << "roi=[" << region.coord1 << ", " << region.coord2 << ", " << region.coord3 << ", " << region.coord4 << ']';
  return text.str();
}

constexpr const char* noSubscriber = "Failed to create subscription to vod.";

}  // namespace

// ---- The service ----

bool RegistryModel::call(Function function, const std::string& arguments) {
  calls_.push_back(std::string(vod::host::name(function)) + '(' + arguments + ')');
  bool succeeds = true;
  for (PlannedFault& fault : faults_) {
    if (fault.function == function && --fault.callsLeft == 0) {
      succeeds = succeeds && !fault.fails;
      serviceIsDown_ = serviceIsDown_ && !fault.serviceReturns;
    }
  }
  return succeeds;
}

bool RegistryModel::serviceCall(Function function, const std::string& arguments) {
  return call(function, arguments) && !serviceIsDown_;
}

int RegistryModel::create(int camera) {
  const bool created = serviceCall(Function::Create, channelText(camera)) && detectors_.count(camera) != 0;
  return created ? ++lastSubscriber_ : 0;
}

::VOD::DetectorInformation RegistryModel::readInformation(int camera, int subscriber) {
  if (!serviceCall(Function::GetInformation, handleText(subscriber))) {
    log_.push_back({LOG_WARNING, "Couldn't read detector information\n"});
    return {};
  }
  return parseDetector(detectors_.at(camera));
}

void RegistryModel::takeServiceDown() {
  serviceIsDown_ = true;
  for (const auto& [camera, bytes] : detectors_) {
    dropSubscription(camera);
  }
}

void RegistryModel::dropSubscription(int camera) {
  const auto record = active_.find(camera);
  if (record == active_.end()) {
    return;
  }
  if (!call(Function::Delete, handleText(record->second.subscriber))) {
    log_.push_back({LOG_ERR, "Failed to delete vod subscriber\n"});
  }
  if (pending_.emplace(camera, record->second).second) {
    ++losses_.happened;
    ++losses_.dropped;
  }
  active_.erase(record);
}

// ---- Setting up ----

bool RegistryModel::setup(int camera, int callback, const std::set<std::string>& classes, const Region& region) {
  const bool wasLost = pending_.erase(camera) != 0;
  Subscription record;
  record.callback = callback;
  record.region = region;
  const bool succeeded = subscribeOrPark(camera, record, classes);
  losses_.recovered += wasLost && succeeded ? 1 : 0;
  losses_.happened += !wasLost && !succeeded ? 1 : 0;
  return succeeded;
}

void RegistryModel::retry() {
  const std::map<int, Subscription> before = pending_;
  std::vector<int> succeeded;
  for (const auto& [camera, wanted] : before) {
    Subscription record;
    record.callback = wanted.callback;
    record.region = wanted.region;
    if (subscribeOrPark(camera, record, wanted.classes)) {
      succeeded.push_back(camera);
    }
  }
  for (const int camera : succeeded) {
    pending_.erase(camera);
    ++losses_.recovered;
  }
}

bool RegistryModel::subscribeOrPark(int camera, Subscription record, const std::set<std::string>& classes) {
  const auto failure = subscribe(camera, record, classes);
  if (!failure) {
    return true;
  }
  if (record.subscriber != 0) {
    call(Function::Unsubscribe, handleText(record.subscriber));
    call(Function::Delete, handleText(record.subscriber));
  }
  pending_[camera] = record;
  logFailure(*failure);
  return false;
}

void RegistryModel::logFailure(const std::string& text) {
  if (failuresInARow_ == 0) {
    log_.push_back({LOG_INFO, text + "\n"});
  } else if (failuresInARow_ % 5 == 0) {
    log_.push_back({LOG_WARNING, text + "\n"});
  }
  ++failuresInARow_;
}

std::optional<std::string> RegistryModel::subscribe(int camera, Subscription& record,
                                                    const std::set<std::string>& classes) {
  const auto information = detectorInformation(camera);
  if (!information) {
    return noSubscriber;
  }
  const auto supported = classIdsByName(*information);
  for (const std::string& name : classes) {
    if (supported.count(name) == 0) {
      return "Not all requested classes are supported";
    }
  }
  if (const auto live = active_.find(camera); live != active_.end()) {
    live->second.callback = record.callback;
    live->second.classes = classes;
    live->second.classNames = classNamesById(supported, classes);
    return std::nullopt;
  }
  record.classes = classes;
  record.classNames = classNamesById(supported, classes);
  if (const auto failure = connect(camera, record)) {
    return failure;
  }
  readInformation(camera, record.subscriber);
  if (!refreshAttributes(camera)) {
    return noSubscriber;
  }
  active_[camera] = record;
  failuresInARow_ = 0;
  return std::nullopt;
}

std::optional<std::string> RegistryModel::connect(int camera, Subscription& record) {
  record.subscriber = create(camera);
  if (record.subscriber == 0) {
    return noSubscriber;
  }
  const std::string handle = handleText(record.subscriber);
  if (!call(Function::SetGetDetectionCallback, handle)) {
    return "Failed to set callback for reading data on vod";
  }
  if (!call(Function::SetTeardownCallback, handle)) {
    return "Failed to set callback for teardown on vod";
  }
  if (!call(Function::SetReceiveEmptyHits, handle + ", true")) {
    return "Failed to set property 'recieve_empty' on vod.";
  }
  if (record.region) {
    if (!serviceCall(Function::SetChannelConfiguration, channelText(camera) + ", " + regionText(*record.region))) {
      return "Failed to set channel configuration on vod.";
    }
    if (!call(Function::UseChannelConfiguration, handle + ", true")) {
      return "Failed to enable channel configuration on vod.";
    }
  }
  if (!serviceCall(Function::Subscribe, handle)) {
    return "Failed to subscribe to vod data.";
  }
  return std::nullopt;
}

void RegistryModel::teardown(int camera) {
  if (pending_.erase(camera) != 0) {
    ++losses_.abandoned;
    return;
  }
  const auto record = active_.find(camera);
  if (record == active_.end()) {
    return;
  }
  const std::string handle = handleText(record->second.subscriber);
  const std::string number = std::to_string(camera);
  active_.erase(record);
  if (!call(Function::Unsubscribe, handle)) {
    log_.push_back({LOG_WARNING, "Failed to disconnect to vod for camera " + number + "\n"});
  }
  if (!call(Function::Delete, handle)) {
    log_.push_back({LOG_WARNING, "Failed to destroy a vod subscription for camera " + number + "\n"});
  }
}

// ---- Frames and questions ----

std::optional<ExpectedFrame> RegistryModel::sendScene(int camera, const std::string& scene) {
  const auto record = active_.find(camera);
  if (record == active_.end() || record->second.callback == noCallback) {
    return std::nullopt;
  }
  const ReferenceAttributes& attributes = attributes_[camera];
  const ReferenceFrame frame = referenceFrame(scene, {record->second.classNames, attributes.types, attributes.values});
  for (const std::uint32_t type : frame.missingAttributeTypes) {
    const std::string number = std::to_string(static_cast<int>(type));
    log_.push_back({LOG_ERR, "Missing vod attribute string for attribute type id " + number + "\n"});
  }
  return ExpectedFrame{record->second.callback, camera, frame.frame};
}

std::optional<::VOD::DetectorInformation> RegistryModel::detectorInformation(int camera) {
  if (const auto record = active_.find(camera); record != active_.end()) {
    return readInformation(camera, record->second.subscriber);
  }
  const int temporary = create(camera);
  if (temporary == 0) {
    return std::nullopt;
  }
  const auto information = readInformation(camera, temporary);
  call(Function::Delete, handleText(temporary));
  return information;
}

bool RegistryModel::refreshAttributes(int camera) {
  attributes_[camera] = {};
  const auto information = detectorInformation(camera);
  if (!information) {
    return false;
  }
  attributes_[camera] = attributesOf(*information);
  return true;
}

std::optional<std::map<std::string, std::set<std::string>>> RegistryModel::supportedAttributes() {
  // Camera 1 had names of both kinds once, so it is never asked again.
  return attributes_[1].supported();
}

bool RegistryModel::serviceQuery(Function function, const std::string& failureText) {
  const bool needsService = function != Function::GetVersion && function != Function::ServiceIsEnabled;
  const bool succeeds = call(function, "") && !(needsService && serviceIsDown_);
  if (!succeeds && !failureText.empty()) {
    log_.push_back({LOG_ERR, failureText});
  }
  return succeeds;
}

}  // namespace tarn::test
