// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

// How recordings and sessions are played.

#include "replay/recording_source.h"
#include "replay/session_source.h"
#include "service/service.h"

#include <algorithm>
#include <cstddef>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>

namespace vod::host {

namespace {

/** How many scenes of a session may wait for the callbacks of one channel before the other channels wait too. */
constexpr std::size_t scenesAhead = 64;

}  // namespace

int Service::startReplay(const Lock& /*held*/, ChannelState& channel) {
  Stream& stream = *channel.stream;
  try {
    std::unique_ptr<SceneSource> source = std::make_unique<RecordingSource>(*channel.folder);
    channel.errors.succeeded(Function::Subscribe);
    if (stream.replayNumber != 0) {
      return status::ok;  // For another channel of the session.
    }
    if (stream.isSession()) {
      source = std::make_unique<SessionSource>(stream.folders);
    }
    if (!stream.replayer) {
      // The stream may be gone when the replayer calls: its address only identifies it.
      stream.replayer = std::make_shared<Replayer>(
          [this, id = &stream](int replay, const Playback::Item& item) { deliverReplayed(id, replay, item); },
          [this, id = &stream] { finishReplay(id); });
    }
    stream.replayNumber = ++lastReplay_;
    stream.replayer->start(stream.replayNumber, std::make_unique<Playback>(std::move(source), stream.replay));
    return status::ok;
  } catch (const recording::RecordingError& error) {
    channel.errors.failed(Function::Subscribe, error.what());
    return status::badRecording;
  }
}

void Service::stopUnusedReplay(const Lock& /*held*/, const std::shared_ptr<Stream>& stream) {
  const auto isReceived = [&](const auto& channel) {
    return channel.second.stream == stream && !channel.second.targets->empty();
  };
  if (!stream || std::any_of(state_.channels.begin(), state_.channels.end(), isReceived)) {
    return;
  }
  stream->replayNumber = 0;
  if (stream->replayer) {
    stream->replayer->stop();
  }
}

Stream* Service::findStream(const Lock& /*held*/, const Stream* stream) {
  const auto found = std::find_if(state_.streams.begin(), state_.streams.end(),
                                  [&](const std::shared_ptr<Stream>& other) { return other.get() == stream; });
  return found == state_.streams.end() ? nullptr : found->get();
}

void Service::deliverReplayed(const Stream* id, int replay, const Playback::Item& item) {
  Lock lock(mutex_);
  const Stream* const stream = findStream(lock, id);
  // The replay was stopped, and perhaps started again, while this scene was read: it is not for the current
  // subscriptions.
  if (stream == nullptr || stream->replayNumber != replay) {
    return;
  }
  const auto found = state_.channels.find(stream->channels[item.recording]);
  if (found == state_.channels.end() || found->second.stream.get() != stream || found->second.targets->empty()) {
    return;
  }
  const auto deliver = [targets = found->second.targets, region = found->second.region](const std::string& scene) {
    deliverTo(targets, frameOf(scene), region);
  };
  if (!stream->isSession() && state_.threads == Threads::OnePerChannel) {
    lock.unlock();
    deliver(item.scene);
    return;
  }
  const std::shared_ptr<DeliveryThread> thread = threadOf(lock, found->second);
  const bool waits = !stream->isSession() || !item.due;
  lock.unlock();
  if (waits) {
    thread->run([&] { deliver(item.scene); });
  } else {
    thread->postWithin(scenesAhead, [deliver, scene = item.scene] { deliver(scene); });
  }
}

void Service::finishReplay(const Stream* id) {
  std::vector<std::shared_ptr<DeliveryThread>> threads;
  {
    const Lock lock(mutex_);
    const Stream* const stream = findStream(lock, id);
    for (auto& [number, channel] : state_.channels) {
      if (stream != nullptr && stream->isSession() && channel.stream.get() == stream) {
        threads.push_back(threadOf(lock, channel));
      }
    }
  }
  for (const auto& thread : threads) {
    thread->run([] {});
  }
}

std::shared_ptr<Replayer> Service::replayerOf(int number) {
  const Lock lock(mutex_);
  const ChannelState& channel = channelAt(lock, number);
  return channel.stream ? channel.stream->replayer : nullptr;
}

bool Service::isAtEndOfRecording(int number) {
  const std::shared_ptr<Replayer> replayer = replayerOf(number);
  return replayer && replayer->isAtEnd();
}

void Service::waitForEndOfRecording(int number) {
  const std::shared_ptr<Replayer> replayer = replayerOf(number);
  if (!replayer) {
    throw std::runtime_error("channel " + std::to_string(number) + " is not playing a recording");
  }
  if (!replayer->waitForEnd(waitTimeout)) {
    throw std::runtime_error("the recording of channel " + std::to_string(number) + " has not reached its end");
  }
}

}  // namespace vod::host
