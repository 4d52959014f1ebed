// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "http/event_hub.h"

#include <algorithm>
#include <utility>

namespace tarn::command {

EventText makeEvent(std::string_view name, std::string_view json, std::int64_t milliseconds) {
  std::string text;
  text.reserve(name.size() + json.size() + 48);
  text.append("event: ").append(name).append("\nid: ").append(std::to_string(milliseconds));
  text.append("\ndata: ").append(json).append("\n\n");
  return std::make_shared<const std::string>(std::move(text));
}

void EventStream::pushFrame(EventText frame) {
  const Lock lock(mutex_);
  frameBytes_ += frame->size();
  frames_.push_back(std::move(frame));
  while (frames_.size() > capacity_.frames || frameBytes_ > capacity_.bytes) {
    dropOldest();
  }
  wake();
}

void EventStream::setState(EventText state) {
  const Lock lock(mutex_);
  state_ = std::move(state);
  wake();
}

void EventStream::close() {
  const Lock lock(mutex_);
  closed_ = true;
  wake();
}

std::optional<std::size_t> EventStream::read(char* buffer, std::size_t size) {
  const Lock lock(mutex_);
  if (closed_) {
    return std::nullopt;
  }
  std::size_t copied = 0;
  while (copied < size) {
    if (!current_ && !(current_ = next())) {
      break;
    }
    const std::size_t count = current_->copy(buffer + copied, size - copied, currentSent_);
    copied += count;
    currentSent_ += count;
    if (currentSent_ == current_->size()) {
      current_ = nullptr;
      currentSent_ = 0;
    }
  }
  if (copied == 0) {
    // With the lock held, so that no event can come between looking and sleeping.
    sleeping_ = true;
    waiter_.sleep();
  }
  return copied;
}

EventText EventStream::next() {
  if (dropped_ != std::exchange(droppedReported_, dropped_)) {
    return std::make_shared<const std::string>("event: dropped\ndata: {\"dropped\":" + std::to_string(dropped_) +
                                               "}\n\n");
  }
  if (state_) {
    return std::exchange(state_, nullptr);
  }
  if (frames_.empty()) {
    return nullptr;
  }
  EventText frame = std::move(frames_.front());
  frames_.pop_front();
  frameBytes_ -= frame->size();
  return frame;
}

void EventStream::dropOldest() {
  frameBytes_ -= frames_.front()->size();
  frames_.pop_front();
  ++dropped_;
}

void EventStream::wake() {
  if (std::exchange(sleeping_, false)) {
    waiter_.wake();
  }
}

std::shared_ptr<EventStream> EventHub::join(EventWaiter waiter) {
  const Lock lock(mutex_);
  streams_.erase(std::remove_if(streams_.begin(), streams_.end(), [](const auto& each) { return each.expired(); }),
                 streams_.end());
  if (streams_.size() >= mostBrowsers) {
    return nullptr;
  }
  auto stream = std::make_shared<EventStream>(capacityPerBrowser, std::move(waiter));
  if (state_) {
    stream->setState(state_);
  }
  if (past_) {
    stream->pushFrame(past_);
  }
  if (closed_) {
    stream->close();
  }
  streams_.push_back(stream);
  return stream;
}

std::vector<std::shared_ptr<EventStream>> EventHub::streams() {
  const Lock lock(mutex_);
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
    const Lock lock(mutex_);
    state_ = state;
  }
  for (const auto& stream : streams()) {
    stream->setState(state);
  }
}

void EventHub::setPast(const EventText& past) {
  const Lock lock(mutex_);
  past_ = past;
}

void EventHub::close() {
  {
    const Lock lock(mutex_);
    closed_ = true;
  }
  for (const auto& stream : streams()) {
    stream->close();
  }
}

}  // namespace tarn::command
