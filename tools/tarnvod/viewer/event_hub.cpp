// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "viewer/event_hub.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <utility>

namespace tarn::command {

EventText makeEvent(const std::string& name, const Json& data) {
  return std::make_shared<const std::string>("event: " + name + "\ndata: " + oneLine(data) + '\n');
}

void EventStream::pushFrame(EventText frame) {
  {
    const std::lock_guard lock(mutex_);
    if (frames_.size() == capacity_) {
      frames_.pop_front();
      ++dropped_;
    }
    frames_.push_back(std::move(frame));
  }
  changed_.notify_one();
}

void EventStream::setState(EventText state) {
  {
    const std::lock_guard lock(mutex_);
    state_ = std::move(state);
  }
  changed_.notify_one();
}

void EventStream::close() {
  {
    const std::lock_guard lock(mutex_);
    closed_ = true;
  }
  changed_.notify_one();
}

std::optional<std::string> EventStream::take() {
  std::unique_lock lock(mutex_);
  changed_.wait(lock, [this] { return closed_ || state_ || !frames_.empty(); });
  if (closed_) {
    return std::nullopt;
  }
  std::string text;
  if (dropped_ != std::exchange(droppedTold_, dropped_)) {
    text += *makeEvent("dropped", {{"dropped", dropped_}});
  }
  if (const EventText state = std::exchange(state_, nullptr)) {
    text += *state;
  }
  for (const EventText& frame : std::exchange(frames_, {})) {
    text += *frame;
  }
  return text;
}

std::shared_ptr<EventStream> EventHub::join() {
  const std::lock_guard lock(mutex_);
  streams_.erase(std::remove_if(streams_.begin(), streams_.end(), [](const auto& each) { return each.expired(); }),
                 streams_.end());
  if (streams_.size() >= mostBrowsers) {
    return nullptr;
  }
  auto stream = std::make_shared<EventStream>(framesPerBrowser);
  if (state_) {
    stream->setState(state_);
  }
  if (closed_) {
    stream->close();
  }
  streams_.push_back(stream);
  return stream;
}

std::vector<std::shared_ptr<EventStream>> EventHub::streams() {
  const std::lock_guard lock(mutex_);
  std::vector<std::shared_ptr<EventStream>> present;
  for (const auto& each : streams_) {
    if (auto stream = each.lock()) {
      present.push_back(std::move(stream));
    }
  }
  return present;
}

void EventHub::publishFrame(const EventText& frame) {
  for (const auto& stream : streams()) {
    stream->pushFrame(frame);
  }
}

void EventHub::publishState(const EventText& state) {
  {
    const std::lock_guard lock(mutex_);
    state_ = state;
  }
  for (const auto& stream : streams()) {
    stream->setState(state);
  }
}

void EventHub::close() {
  {
    const std::lock_guard lock(mutex_);
    closed_ = true;
  }
  for (const auto& stream : streams()) {
    stream->close();
  }
}

}  // namespace tarn::command
