// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

// How scenes and teardowns reach the callbacks.

#include "service/service.h"

#include <stdexcept>
#include <utility>

namespace vod::host {

namespace {

void deliverTo(const Targets& targets, const Frame& frame, const std::optional<Region>& region) {
  for (const Target& target : *targets) {
    target.subscriber->deliver(target.subscription, frame, region);
  }
}

}  // namespace

void Service::push(int number, std::string bytes, Frame frame) {
  const Lock lock(mutex_);
  ChannelState& channel = channelAt(lock, number);
  const auto owned = std::make_shared<const std::string>(std::move(bytes));
  if (frame.buffer != nullptr) {
    frame.buffer = frameOf(*owned).buffer;
  }
  threadOf(lock, channel).post([owned, frame, targets = channel.targets, region = channel.region] {
    deliverTo(targets, frame, region);
  });
}

void Service::deliverHere(int number, const Frame& frame) {
  Lock lock(mutex_);
  const ChannelState& channel = channelAt(lock, number);
  const Targets targets = channel.targets;
  const std::optional<Region> region = channel.region;
  lock.unlock();
  deliverTo(targets, frame, region);
}

void Service::dropSubscriptions(int number) {
  const Lock lock(mutex_);
  drop(lock, channelAt(lock, number));
}

void Service::drop(const Lock& lock, ChannelState& channel) {
  stopReplay(lock, channel);
  const Targets targets = std::exchange(channel.targets, std::make_shared<std::vector<Target>>());
  if (targets->empty()) {
    return;
  }
  const auto tearDown = [targets](Subscriber::Order order) {
    for (const Target& target : *targets) {
      target.subscriber->tearDown(target.subscription, order);
    }
  };
  if (!state_.teardownDuringDetection) {
    threadOf(lock, channel).post([tearDown] { tearDown(Subscriber::Order::AfterRunningCallback); });
    return;
  }
  if (!state_.teardownThread) {
    state_.teardownThread = std::make_shared<DeliveryThread>();
  }
  state_.teardownThread->post([tearDown] { tearDown(Subscriber::Order::DuringRunningCallback); });
}

void Service::takeDown() {
  const Lock lock(mutex_);
  configure(lock);
  state_.isDown = true;
  for (auto& [number, channel] : state_.channels) {
    drop(lock, channel);
  }
}

void Service::bringUp() {
  const Lock lock(mutex_);
  state_.isDown = false;
}

std::size_t Service::waitingTasks(int number) {
  const Lock lock(mutex_);
  return threadOf(lock, channelAt(lock, number)).waiting();
}

DeliveryThread& Service::threadOf(const Lock& /*held*/, ChannelState& channel) {
  auto& thread = state_.threads == Threads::OneForAll ? state_.sharedThread : channel.thread;
  if (!thread) {
    thread = std::make_shared<DeliveryThread>();
  }
  return *thread;
}

int Service::startReplay(const Lock& /*held*/, int number, ChannelState& channel) {
  try {
    auto playback = std::make_unique<Playback>(*channel.folder, channel.replay);
    if (!channel.replayer) {
      channel.replayer = std::make_shared<Replayer>(
          [this, number](int replay, const std::string& scene) { deliverReplayed(number, replay, scene); });
    }
    channel.replayNumber = ++lastReplay_;
    channel.replayer->start(channel.replayNumber, std::move(playback));
    channel.errors.succeeded(Function::Subscribe);
    return status::ok;
  } catch (const recording::RecordingError& error) {
    channel.errors.failed(Function::Subscribe, error.what());
    return status::badRecording;
  }
}

void Service::stopReplay(const Lock& /*held*/, ChannelState& channel) {
  channel.replayNumber = 0;
  if (channel.replayer) {
    channel.replayer->stop();
  }
}

void Service::deliverReplayed(int number, int replay, const std::string& scene) {
  Lock lock(mutex_);
  const auto found = state_.channels.find(number);
  // The replay was stopped, and perhaps started again, while this scene was read: it is not for the current
  // subscriptions.
  if (found == state_.channels.end() || found->second.replayNumber != replay) {
    return;
  }
  const Targets targets = found->second.targets;
  const std::optional<Region> region = found->second.region;
  DeliveryThread* const shared = state_.threads == Threads::OneForAll ? &threadOf(lock, found->second) : nullptr;
  lock.unlock();
  const auto deliver = [&] { deliverTo(targets, frameOf(scene), region); };
  if (shared != nullptr) {
    shared->run(deliver);
  } else {
    deliver();
  }
}

void Service::drain() {
  std::vector<std::shared_ptr<DeliveryThread>> threads;
  {
    const Lock lock(mutex_);
    threads = {state_.sharedThread, state_.teardownThread};
    for (const auto& [number, channel] : state_.channels) {
      threads.push_back(channel.thread);
    }
  }
  for (const auto& thread : threads) {
    if (thread && !thread->drain(waitTimeout)) {
      throw std::runtime_error("a callback has not returned; the journal:\n" + lines(journal.calls()));
    }
  }
}

bool Service::isAtEndOfRecording(int number) {
  std::shared_ptr<Replayer> replayer;
  {
    const Lock lock(mutex_);
    replayer = channelAt(lock, number).replayer;
  }
  return replayer && replayer->isAtEnd();
}

void Service::waitForEndOfRecording(int number) {
  std::shared_ptr<Replayer> replayer;
  {
    const Lock lock(mutex_);
    replayer = channelAt(lock, number).replayer;
  }
  if (!replayer) {
    throw std::runtime_error("channel " + std::to_string(number) + " is not playing a recording");
  }
  if (!replayer->waitForEnd(waitTimeout)) {
    throw std::runtime_error("the recording of channel " + std::to_string(number) + " has not reached its end");
  }
}

}  // namespace vod::host
