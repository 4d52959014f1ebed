// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

// How scenes and teardowns reach the callbacks.

#include "service/service.h"

#include <memory>
#include <stdexcept>
#include <utility>

namespace vod::host {

void deliverTo(const Targets& targets, const Frame& frame, const std::optional<Region>& region) {
  for (const Target& target : *targets) {
    target.subscriber->deliver(target.subscription, frame, region);
  }
}

void Service::push(int number, std::string bytes, Frame frame) {
  const Lock lock(mutex_);
  ChannelState& channel = channelAt(lock, number);
  const auto owned = std::make_shared<const std::string>(std::move(bytes));
  if (frame.buffer != nullptr) {
    frame.buffer = frameOf(*owned).buffer;
  }
  threadOf(lock, channel)->post([owned, frame, targets = channel.targets, region = channel.region] {
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
  const Targets targets = std::exchange(channel.targets, std::make_shared<std::vector<Target>>());
  stopUnusedReplay(lock, channel.stream);
  if (targets->empty()) {
    return;
  }
  const auto tearDown = [targets](Subscriber::Order order) {
    for (const Target& target : *targets) {
      target.subscriber->tearDown(target.subscription, order);
    }
  };
  if (!state_.teardownDuringDetection) {
    threadOf(lock, channel)->post([tearDown] { tearDown(Subscriber::Order::AfterRunningCallback); });
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
  return threadOf(lock, channelAt(lock, number))->waiting();
}

std::shared_ptr<DeliveryThread> Service::threadOf(const Lock& /*held*/, ChannelState& channel) {
  auto& thread = state_.threads == Threads::OneForAll ? state_.sharedThread : channel.thread;
  if (!thread) {
    thread = std::make_shared<DeliveryThread>();
  }
  return thread;
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

}  // namespace vod::host
