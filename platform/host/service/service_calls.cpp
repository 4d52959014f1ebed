// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

// The functions of the service that the C interface calls.

#include "diagnostics.h"
#include "messages/detector_information_check.h"
#include "replay/environment.h"
#include "service/service.h"

#include <algorithm>
#include <filesystem>
#include <new>
#include <stdexcept>
#include <system_error>
#include <utility>

namespace vod::host {

namespace {

/**
 * Returns the handle with this number. Numbers are never used twice and handles never dereferenced, so a handle that is
 * used after `delete` is always recognised.
 */
Handle handleOf(std::uintptr_t number) {
  constexpr std::uintptr_t alignment = 16;  // As the address of an object would have.
  // NOLINTNEXTLINE(performance-no-int-to-ptr): the handle is only a number
  return reinterpret_cast<Handle>(number * alignment);
}

/** Whether the folder of the channel's recording exists, if it has a recording; reports an error otherwise. */
bool folderExists(ChannelState& channel) {
  std::error_code error;
  if (!channel.folder || std::filesystem::is_directory(*channel.folder, error)) {
    channel.errors.succeeded(Function::Create);
    return true;
  }
  channel.errors.failed(Function::Create,
                        *channel.folder + ": " + (error ? error.message() : "not a recording folder"));
  return false;
}

}  // namespace

int Service::create(Handle* handle, void* userData, int channel, int& number) {
  if (handle == nullptr) {
    return status::badArgument;
  }
  const Lock lock(mutex_);
  if (state_.isDown) {
    return status::serviceDown;
  }
  ChannelState* const served = findChannel(lock, channel);
  if (served == nullptr) {
    return status::noSuchChannel;
  }
  if (!folderExists(*served)) {
    return status::badRecording;
  }
  const auto subscriber = std::make_shared<Subscriber>(state_.lastSubscriber + 1, channel, userData);
  if (journal.isRecording()) {
    state_.known.push_back(subscriber);
  }
  state_.subscribers.emplace(handleOf(lastHandle_ + 1), subscriber);
  *handle = handleOf(++lastHandle_);
  number = ++state_.lastSubscriber;
  return status::ok;
}

int Service::release(Handle* handle) {
  if (handle == nullptr) {
    return status::badArgument;
  }
  std::shared_ptr<Subscriber> subscriber;
  {
    const Lock lock(mutex_);
    const auto entry = state_.subscribers.find(*handle);
    if (entry == state_.subscribers.end()) {
      ++state_.callsWithBadHandles;
      return status::badHandle;
    }
    subscriber = std::move(entry->second);
    state_.subscribers.erase(entry);
    subscriber->close();
    *handle = nullptr;
    // Last, because it may fail to allocate, and the handle has to be released even then.
    leave(lock, *subscriber);
  }
  waitForCallbacks(*subscriber, Function::Delete);
  return status::ok;
}

int Service::subscribe(const std::shared_ptr<Subscriber>& subscriber) {
  std::optional<std::string> scene;
  {
    const Lock lock(mutex_);
    if (state_.isDown) {
      return status::serviceDown;
    }
    scene = state_.sceneDuringSubscribe;
  }
  const int subscription = subscriber->subscribe();
  if (subscription == 0) {
    return status::alreadySubscribed;
  }
  if (scene) {
    subscriber->deliver(subscription, frameOf(*scene), std::nullopt);
  }
  int result = status::outOfMemory;
  try {
    result = join(subscriber, subscription);
  } catch (const std::bad_alloc&) {
    // Handled below, like every other failure.
  }
  if (result != status::ok) {
    subscriber->unsubscribe();
  }
  return result;
}

int Service::join(const std::shared_ptr<Subscriber>& subscriber, int subscription) {
  const Lock lock(mutex_);
  if (state_.isDown) {
    return status::serviceDown;
  }
  if (!subscriber->has(subscription)) {
    return status::badHandle;  // Ended meanwhile, by a callback or by another thread.
  }
  ChannelState* const channel = findChannel(lock, subscriber->channel());
  if (channel == nullptr) {
    return status::noSuchChannel;
  }
  auto targets = std::make_shared<std::vector<Target>>(*channel->targets);
  targets->push_back({subscriber, subscription});
  if (channel->targets->empty() && channel->stream) {
    if (const int result = startReplay(lock, *channel); result != status::ok) {
      return result;
    }
  }
  channel->targets = std::move(targets);
  return status::ok;
}

int Service::unsubscribe(const std::shared_ptr<Subscriber>& subscriber) {
  {
    const Lock lock(mutex_);
    subscriber->unsubscribe();
    leave(lock, *subscriber);
  }
  waitForCallbacks(*subscriber, Function::Unsubscribe);
  return status::ok;
}

void Service::leave(const Lock& lock, const Subscriber& subscriber) {
  const auto found = state_.channels.find(subscriber.channel());
  if (found == state_.channels.end()) {
    return;
  }
  ChannelState& channel = found->second;
  const auto isSubscriber = [&](const Target& target) { return target.subscriber.get() == &subscriber; };
  if (std::none_of(channel.targets->begin(), channel.targets->end(), isSubscriber)) {
    return;
  }
  auto targets = std::make_shared<std::vector<Target>>(*channel.targets);
  targets->erase(std::remove_if(targets->begin(), targets->end(), isSubscriber), targets->end());
  channel.targets = std::move(targets);
  stopUnusedReplay(lock, channel.stream);
}

void Service::waitForCallbacks(Subscriber& subscriber, Function function) {
  Lock lock(mutex_);
  const bool waits = state_.waitsForCallbacks;
  const auto limit = state_.waitLimit;
  lock.unlock();
  if (waits && !subscriber.waitForCallbacks(limit)) {
    report(std::string(name(function)) + ": a callback of subscriber #" + std::to_string(subscriber.number()) +
           " still runs after " + std::to_string(limit.count()) + " ms; no longer waiting for it");
  }
}

int Service::setChannelConfiguration(int channel, const std::string& configuration, std::string& error) {
  const Lock lock(mutex_);
  if (state_.isDown) {
    error = "the service is down";
    return status::serviceDown;
  }
  ChannelState* const configured = findChannel(lock, channel);
  if (configured == nullptr) {
    error = "no such channel";
    return status::noSuchChannel;
  }
  const auto read = readChannelConfiguration(configuration);
  if (!read) {
    error = "not a channel configuration";
    return status::badArgument;
  }
  configured->region = read->region;
  return status::ok;
}

int Service::information(const Subscriber& subscriber, std::optional<std::string>& bytes, std::size_t& length,
                         std::string& error) {
  std::string folder;
  {
    const Lock lock(mutex_);
    if (state_.isDown) {
      error = "the service is down";
      return status::serviceDown;
    }
    const ChannelState* const channel = findChannel(lock, subscriber.channel());
    if (channel == nullptr) {
      error = "no such channel";
      return status::noSuchChannel;
    }
    if (channel->nullInformation) {
      length = 0;
      return status::ok;
    }
    if (channel->information || !channel->folder) {
      bytes = channel->information.value_or("");
      length = channel->reportedInformationLength.value_or(bytes->size());
      return status::ok;
    }
    folder = *channel->folder;
  }
  try {
    bytes = readValidDetectorInformation(folder);
    length = bytes->size();
  } catch (const std::runtime_error& failure) {
    error = failure.what();
  }
  const Lock lock(mutex_);
  ChannelState* const channel = findChannel(lock, subscriber.channel());
  if (bytes) {
    if (channel != nullptr) {
      channel->errors.succeeded(Function::GetInformation);
    }
    return status::ok;
  }
  if (channel != nullptr) {
    channel->errors.failed(Function::GetInformation, error);
  }
  return status::badRecording;
}

int Service::channelCounts(ServiceState::Counts& counts) {
  const Lock lock(mutex_);
  if (state_.isDown) {
    return status::serviceDown;
  }
  configure(lock);
  if (!state_.counts && state_.configurationError) {
    return status::noSuchChannel;
  }
  const auto channels = static_cast<std::uint32_t>(state_.channels.size());
  counts = state_.counts.value_or(ServiceState::Counts{channels, channels});
  return status::ok;
}

void Service::configure(const Lock& lock) {
  if (state_.isConfigured) {
    return;
  }
  state_.isConfigured = true;
  try {
    const Environment environment = readEnvironment();
    for (const PlayedTogether& folders : environment.streams) {
      feed(lock, static_cast<int>(state_.channels.size()), folders, environment.replay);
    }
  } catch (const std::invalid_argument& error) {
    state_.configurationError = error.what();
    // Once: the variables of a running process do not change, and applications retry forever.
    report(*state_.configurationError);
  }
}

ChannelState* Service::findChannel(const Lock& lock, int channel) {
  configure(lock);
  if (state_.configurationError) {
    return nullptr;
  }
  const auto found = state_.channels.find(channel);
  return found == state_.channels.end() ? nullptr : &found->second;
}

std::shared_ptr<Subscriber> Service::find(Handle handle) {
  const Lock lock(mutex_);
  const auto found = state_.subscribers.find(handle);
  if (found == state_.subscribers.end()) {
    ++state_.callsWithBadHandles;
    return nullptr;
  }
  return found->second;
}

std::string Service::describe(Handle handle, int& number) {
  if (handle == nullptr) {
    return "null";
  }
  const Lock lock(mutex_);
  const auto found = state_.subscribers.find(handle);
  if (found == state_.subscribers.end()) {
    return "#gone";
  }
  number = found->second->number();
  return '#' + std::to_string(number);
}

}  // namespace vod::host
