// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

// The functions of the service that the control interface calls.

#include "diagnostics.h"
#include "service/callback_exceptions.h"
#include "service/service.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

namespace vod::host {

Service& Service::instance() {
  static auto& service = *new Service;
  return service;
}

void Service::reset() {
  faults.clear();
  ServiceState gone;
  {
    const Lock lock(mutex_);
    std::swap(gone, state_);
  }
  for (const auto& [handle, subscriber] : gone.subscribers) {
    subscriber->close();
  }
  // After all subscribers are closed, so that a callback that waited at a gate is the last one.
  Gate::openAll();
  for (const auto& stream : gone.streams) {
    // Before the delivery threads are destroyed: it may be waiting for one of them.
    stream->replayer.reset();
  }
  for (const auto& [handle, subscriber] : gone.subscribers) {
    if (!subscriber->waitForCallbacks(waitTimeout)) {
      throw std::runtime_error("a callback of subscriber #" + std::to_string(subscriber->number()) +
                               " has not returned; the journal:\n" + lines(journal.calls()));
    }
  }
  observer.entering = nullptr;
  observer.leaving = nullptr;
  callbackExceptions.areCaught = false;
  callbackExceptions.caught = 0;
  journal.clear();
  journal.record(true);
}

void Service::makeChannel(int channel) {
  const Lock lock(mutex_);
  state_.isConfigured = true;
  state_.channels.try_emplace(channel);
}

void Service::requireChannel(int channel) {
  const Lock lock(mutex_);
  configure(lock);
  channelAt(lock, channel);
}

std::optional<std::string> Service::configurationError() {
  const Lock lock(mutex_);
  configure(lock);
  return state_.configurationError;
}

void Service::refuseConfiguration(const std::string& error) {
  const Lock lock(mutex_);
  state_.isConfigured = true;
  state_.channels.clear();
  state_.configurationError = error;
  report(error);
}

ChannelState& Service::channelAt(const Lock& /*held*/, int channel) {
  const auto found = state_.channels.find(channel);
  if (found == state_.channels.end()) {
    throw std::out_of_range("there is no channel " + std::to_string(channel));
  }
  return found->second;
}

void Service::changeChannel(int channel, const std::function<void(ChannelState&)>& change) {
  const Lock lock(mutex_);
  change(channelAt(lock, channel));
}

void Service::feedFromRecording(int number, std::string folder, Replay replay) {
  const Lock lock(mutex_);
  channelAt(lock, number);
  feed(lock, number, {std::move(folder)}, replay);
}

void Service::feedFromSession(std::vector<std::string> folders, Replay replay) {
  const Lock lock(mutex_);
  state_.isConfigured = true;
  feed(lock, 0, std::move(folders), replay);
}

void Service::feed(const Lock& lock, int firstChannel, std::vector<std::string> folders, Replay replay) {
  std::vector<int> channels;
  for (const std::string& folder : folders) {
    channels.push_back(firstChannel + static_cast<int>(channels.size()));
    ChannelState& channel = state_.channels[channels.back()];
    stopUnusedReplay(lock, std::exchange(channel.stream, nullptr));
    channel.folder = folder;
  }
  const std::shared_ptr<Stream> stream = unusedStream(lock);
  stream->channels = std::move(channels);
  stream->folders = std::move(folders);
  stream->replay = replay;
  for (const int number : stream->channels) {
    ChannelState& channel = state_.channels[number];
    channel.stream = stream;
    if (!channel.targets->empty() && startReplay(lock, channel) != status::ok) {
      throw std::runtime_error(*channel.folder + ": cannot be played");
    }
  }
}

std::shared_ptr<Stream> Service::unusedStream(const Lock& /*held*/) {
  const auto feedsNoChannel = [this](const std::shared_ptr<Stream>& stream) TARNVOD_REQUIRES(mutex_) {
    return std::none_of(state_.channels.begin(), state_.channels.end(),
                        [&](const auto& channel) { return channel.second.stream == stream; });
  };
  const auto found = std::find_if(state_.streams.begin(), state_.streams.end(), feedsNoChannel);
  return found != state_.streams.end() ? *found : state_.streams.emplace_back(std::make_shared<Stream>());
}

void Service::access(const std::function<void(ServiceState&)>& access) {
  const Lock lock(mutex_);
  access(state_);
}

}  // namespace vod::host
