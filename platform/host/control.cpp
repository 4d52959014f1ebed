// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "recording/session.h"
#include "service/callback_exceptions.h"
#include "service/service.h"

#include <vod_host.h>

#include <algorithm>
#include <stdexcept>
#include <utility>

namespace vod::host {

namespace {

Service& service() {
  return Service::instance();
}

Frame verbatim(const std::string& bytes, std::int32_t length) {
  return {frameOf(bytes).buffer, length, true};
}

}  // namespace

void reset() {
  service().reset();
}

Channel channel(int number) {
  service().makeChannel(number);
  return Channel(number);
}

Channel servedChannel(int number) {
  service().requireChannel(number);
  return Channel(number);
}

std::optional<std::string> configurationError() {
  return service().configurationError();
}

const Channel& Channel::detectorInformation(std::string bytes) const {
  service().changeChannel(number_, [&](ChannelState& channel) { channel.information = std::move(bytes); });
  return *this;
}

const Channel& Channel::reportedInformationLength(std::size_t length) const {
  service().changeChannel(number_, [&](ChannelState& channel) { channel.reportedInformationLength = length; });
  return *this;
}

const Channel& Channel::nullInformation() const {
  service().changeChannel(number_, [](ChannelState& channel) { channel.nullInformation = true; });
  return *this;
}

const Channel& Channel::recording(std::string folder, Replay replay) const {
  service().feedFromRecording(number_, std::move(folder), replay);
  return *this;
}

std::vector<Channel> session(const std::string& folder, Replay replay) {
  const auto cameras = recording::camerasOf(folder);
  if (cameras.empty()) {
    throw std::runtime_error(folder + ": not the folder of a session");
  }
  service().feedFromSession({cameras.begin(), cameras.end()}, replay);
  std::vector<Channel> channels;
  for (std::size_t number = 0; number < cameras.size(); ++number) {
    channels.push_back(Channel(static_cast<int>(number)));
  }
  return channels;
}

const Channel& Channel::pushScene(std::string bytes) const {
  const Frame frame = frameOf(bytes);
  service().push(number_, std::move(bytes), frame);
  return *this;
}

const Channel& Channel::pushSceneOfLength(std::string bytes, std::int32_t length) const {
  const Frame frame = verbatim(bytes, length);
  service().push(number_, std::move(bytes), frame);
  return *this;
}

const Channel& Channel::pushNullScene(std::int32_t length) const {
  service().push(number_, {}, {nullptr, length, true});
  return *this;
}

const Channel& Channel::deliverScene(const std::string& bytes) const {
  service().deliverHere(number_, frameOf(bytes));
  return *this;
}

const Channel& Channel::dropSubscriptions() const {
  service().dropSubscriptions(number_);
  return *this;
}

void Channel::waitForEndOfRecording() const {
  service().waitForEndOfRecording(number_);
}

bool Channel::isAtEndOfRecording() const {
  return service().isAtEndOfRecording(number_);
}

std::vector<int> Channel::subscriptions() const {
  std::vector<int> numbers;
  service().changeChannel(number_, [&](const ChannelState& channel) {
    for (const Target& target : *channel.targets) {
      numbers.push_back(target.subscriber->number());
    }
  });
  std::sort(numbers.begin(), numbers.end());
  return numbers;
}

void drain() {
  service().drain();
}

void takeServiceDown() {
  service().takeDown();
}

void bringServiceUp() {
  service().bringUp();
}

void setVersion(int major, int minor) {
  service().access([&](ServiceState& state) {
    state.major = major;
    state.minor = minor;
  });
}

void setChannelCounts(std::uint32_t channels, std::uint32_t simultaneously) {
  service().access([&](ServiceState& state) { state.counts = ServiceState::Counts{channels, simultaneously}; });
}

void setEnabled(bool enabled) {
  service().access([&](ServiceState& state) { state.isEnabled = enabled; });
}

void waitForCallbacks(bool wait, std::chrono::milliseconds limit) {
  service().access([&](ServiceState& state) {
    state.waitsForCallbacks = wait;
    state.waitLimit = limit;
  });
}

void callbackThreads(Threads threads) {
  service().access([&](ServiceState& state) { state.threads = threads; });
}

void deliverDuringSubscribe(std::string scene) {
  service().access([&](ServiceState& state) { state.sceneDuringSubscribe = std::move(scene); });
}

void teardownDuringDetection(bool enabled) {
  service().access([&](ServiceState& state) { state.teardownDuringDetection = enabled; });
}

void catchCallbackExceptions(bool enabled) {
  callbackExceptions.areCaught = enabled;
}

int caughtCallbackExceptions() {
  return callbackExceptions.caught;
}

void aroundCalls(void (*entering)(), void (*leaving)()) {
  service().observer.entering = entering;
  service().observer.leaving = leaving;
}

int plan(const Fault& fault) {
  return service().faults.add(fault);
}

void lift(int fault) {
  service().faults.remove(fault);
}

void liftAllFaults() {
  service().faults.clear();
}

std::vector<std::string> journal() {
  std::vector<std::string> texts;
  for (const Call& call : calls()) {
    texts.push_back(call.text());
  }
  return texts;
}

std::vector<Call> calls() {
  return service().journal.calls();
}

void clearJournal() {
  service().journal.clear();
}

void recordCalls(bool enabled) {
  service().journal.record(enabled);
}

void waitForCalls(const std::function<bool(const std::vector<Call>&)>& predicate) {
  service().journal.waitFor(predicate);
}

void waitForReturned(Function function, int count) {
  waitForCalls([&](const std::vector<Call>& calls) {
    return count <= std::count_if(calls.begin(), calls.end(), [&](const Call& call) {
             return call.function == function && call.result.has_value();
           });
  });
}

int liveSubscribers() {
  std::size_t count = 0;
  service().access([&](const ServiceState& state) { count = state.subscribers.size(); });
  return static_cast<int>(count);
}

int callsWithBadHandles() {
  int count = 0;
  service().access([&](const ServiceState& state) { count = state.callsWithBadHandles; });
  return count;
}

Registration registration(int number) {
  std::shared_ptr<Subscriber> subscriber;
  service().access([&](const ServiceState& state) {
    for (const auto& known : state.known) {
      subscriber = known->number() == number ? known : subscriber;
    }
    for (const auto& [handle, live] : state.subscribers) {
      subscriber = live->number() == number ? live : subscriber;
    }
  });
  if (!subscriber) {
    throw std::out_of_range("there is no subscriber #" + std::to_string(number));
  }
  return subscriber->registration();
}

}  // namespace vod::host
