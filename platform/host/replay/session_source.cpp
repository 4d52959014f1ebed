// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "replay/session_source.h"

#include "diagnostics.h"

#include <algorithm>
#include <utility>

namespace vod::host {

using recording::BootId;
using recording::CheckedReader;
using recording::CheckedScene;
using recording::Damage;

namespace {

/** A damaged index, and one put together from several boots, does not name its boot. */
bool mayBeOne(const BootId& left, const BootId& right) {
  constexpr BootId none{};
  return left == right || left == none || right == none;
}

/** 0 when the second is before the first. */
std::uint64_t microsecondsBetween(std::int64_t first, std::int64_t second) {
  return second < first ? 0 : static_cast<std::uint64_t>(second) - static_cast<std::uint64_t>(first);
}

}  // namespace

SessionSource::SessionSource(const std::vector<std::string>& folders) {
  for (const std::string& folder : folders) {
    cameras_.emplace_back().folder = folder;
  }
  SessionSource::startAgain();
}

void SessionSource::startAgain() {
  clock_.reset();
  time_ = 0;
  for (Camera& camera : cameras_) {
    open(camera);
    camera.time = 0;
    camera.timestamp.reset();
    advance(camera);
  }
}

void SessionSource::open(Camera& camera) {
  try {
    camera.reader = std::make_unique<CheckedReader>(camera.folder);
  } catch (const recording::RecordingError& error) {
    camera.reader.reset();
    report(error.what());
  }
}

std::optional<TimedScene> SessionSource::next() {
  Camera* camera = earliest();
  if (camera == nullptr) {
    beginNextBoot();
    camera = earliest();
  }
  if (camera == nullptr) {
    return std::nullopt;
  }
  time_ = *camera->head->time;
  camera->time = time_;
  camera->timestamp = camera->head->timestamp;
  TimedScene scene{std::move(camera->head->bytes), time_, static_cast<std::size_t>(camera - cameras_.data())};
  advance(*camera);
  return scene;
}

void SessionSource::advance(Camera& camera) {
  camera.head.reset();
  auto scene = read(camera);
  if (!scene) {
    return;
  }
  const std::uint64_t timestamp = timestampOf(scene->bytes);
  Head head{std::move(scene->bytes), timestamp, camera.reader->index().boot(), scene->arrival, std::nullopt};
  setTime(camera, head);
  camera.head = std::move(head);
}

std::optional<CheckedScene> SessionSource::read(Camera& camera) {
  while (camera.reader != nullptr) {
    auto next = camera.reader->next();
    if (auto* const scene = std::get_if<CheckedScene>(&next)) {
      return std::move(*scene);
    }
    const auto* const damage = std::get_if<Damage>(&next);
    if (damage == nullptr) {
      return std::nullopt;
    }
    if (!std::exchange(camera.damageReported, true)) {
      report(toString(*damage));
    }
  }
  return std::nullopt;
}

void SessionSource::setTime(const Camera& camera, Head& head) const {
  if (!head.arrival) {
    const std::uint64_t before = std::min(head.timestamp, camera.timestamp.value_or(head.timestamp));
    head.time = camera.time + head.timestamp - before;
  } else if (clock_ && mayBeOne(clock_->boot, head.boot)) {
    head.time = std::max(camera.time, clock_->time + microsecondsBetween(clock_->monotonic, head.arrival->monotonic));
  }
}

void SessionSource::beginNextBoot() {
  const Head* next = nullptr;
  for (const Camera& camera : cameras_) {
    // The wall clock orders the boots: the monotonic clocks of two boots do not compare.
    if (camera.head && (next == nullptr || camera.head->arrival->wallClock < next->arrival->wallClock)) {
      next = &*camera.head;
    }
  }
  if (next == nullptr) {
    return;
  }
  BootClock clock{next->boot, next->arrival->monotonic, time_};
  for (const Camera& camera : cameras_) {
    if (camera.head && camera.head->arrival && mayBeOne(camera.head->boot, clock.boot)) {
      clock.monotonic = std::min(clock.monotonic, camera.head->arrival->monotonic);
    }
  }
  clock_ = clock;
  for (Camera& camera : cameras_) {
    if (camera.head) {
      setTime(camera, *camera.head);
    }
  }
}

SessionSource::Camera* SessionSource::earliest() {
  Camera* found = nullptr;
  for (Camera& camera : cameras_) {
    const bool hasTime = camera.head && camera.head->time;
    if (hasTime && (found == nullptr || *camera.head->time < *found->head->time)) {
      found = &camera;
    }
  }
  return found;
}

}  // namespace vod::host
