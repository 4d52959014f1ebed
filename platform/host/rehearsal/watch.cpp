// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "rehearsal/watch.h"

#include "schedule/process_resources.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <vod_host_rehearsal.h>

#include <algorithm>
#include <cerrno>
#include <stdexcept>
#include <system_error>
#include <utility>

namespace vod::host {

namespace {

using namespace std::chrono_literals;

/** Callbacks that take less are not written. */
constexpr std::chrono::milliseconds notableCallback = 300ms;
/** So that an application that makes up names does not fill the memory. */
constexpr std::size_t mostClasses = 1000;

std::chrono::milliseconds sinceThen(Watch::Clock::time_point then) {
  return std::chrono::duration_cast<std::chrono::milliseconds>(Watch::Clock::now() - then);
}

void writeAll(int descriptor, const std::string& text) {
  ssize_t written = 0;
  do {
    // Short lines: a pipe takes each of them as a whole, so those of several processes do not mix.
    written = ::write(descriptor, text.data(), text.size());
  } while (written < 0 && errno == EINTR);
}

}  // namespace

Watch& Watch::instance() {
  static auto& watch = *new Watch;
  return watch;
}

void Watch::writeTo(const std::string& path) {
  // A pipe without a reader is an error, instead of waiting for one. Once it is open, a full pipe is waited for.
  const int descriptor = ::open(path.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC | O_NONBLOCK, 0666);
  if (descriptor < 0) {
    throw std::runtime_error(path + ": " + std::system_category().message(errno));
  }
  static_cast<void>(::fcntl(descriptor, F_SETFL, O_WRONLY | O_APPEND));
  begin_ = Clock::now();
  descriptor_ = descriptor;
}

void Watch::write(const std::string& event, Fields fields) {
  if (isOn()) {
    writeAll(descriptor_,
             schedule::toLine({static_cast<int>(::getpid()), sinceThen(begin_), event, std::move(fields)}));
  }
}

void Watch::returned(const Call& call) {
  if (!isOn()) {
    return;
  }
  Lock lock(mutex_);
  count(Clock::now());
  if (call.function == Function::Create && call.subscriber != 0) {
    channels_[call.subscriber] = call.channel.value_or(0);
  }
  const auto found = channels_.find(call.subscriber);
  if (found == channels_.end()) {
    return;
  }
  const int camera = found->second + 1;
  const bool subscribed = call.function == Function::Subscribe && call.result == 0;
  const bool left = call.function == Function::Delete || call.function == Function::Unsubscribe;
  if (subscribed) {
    received_.erase(camera);  // What was under way before belongs to an earlier subscription.
  }
  if (call.function == Function::Delete) {
    channels_.erase(found);
  }
  lock.unlock();
  if (subscribed || left) {
    write(subscribed ? "subscribed" : "left",
          {{"camera", std::to_string(camera)}, {"subscriber", std::to_string(call.subscriber)}});
  }
}

void Watch::count(Clock::time_point now) {
  if (now - second_ >= 1s) {
    second_ = now;
    callsInSecond_ = 0;
  }
  busiestSecond_ = std::max(busiestSecond_, ++callsInSecond_);
}

void Watch::received(int camera, const std::string& className) {
  if (!isOn()) {
    return;
  }
  {
    const Lock lock(mutex_);
    std::set<std::string>& classes = received_[camera];
    if (classes.size() >= mostClasses || !classes.insert(className).second) {
      return;
    }
  }
  write("received", {{"camera", std::to_string(camera)}, {"class", className}});
}

void Watch::forgetReceived() {
  const Lock lock(mutex_);
  received_.clear();
}

void Watch::mark(int round) {
  Lock lock(mutex_);
  const auto running = running_;
  const int busiest = std::exchange(busiestSecond_, 0);
  lock.unlock();
  for (const auto& [number, callback] : running) {
    writeBlocked(callback, false);
  }
  const schedule::ProcessResources resources = schedule::processResources();
  write("mark", {{"round", std::to_string(round)},
                 {"heap", std::to_string(resources.heap)},
                 {"threads", std::to_string(resources.threads)},
                 {"descriptors", std::to_string(resources.descriptors)},
                 {"calls_per_second", std::to_string(busiest)}});
}

void Watch::writeBlocked(const RunningCallback& callback, bool hasReturned) {
  const auto taken = sinceThen(callback.begin);
  if (taken >= notableCallback) {
    write("blocked", {{"camera", std::to_string(callback.camera)},
                      {"for", std::to_string(taken.count())},
                      {"returned", hasReturned ? "1" : "0"}});
  }
}

Watch::Callback::Callback(int channel) {
  Watch& watch = instance();
  if (watch.isOn()) {
    const Lock lock(watch.mutex_);
    number_ = ++watch.lastCallback_;
    watch.running_.emplace(*number_, RunningCallback{channel + 1, Clock::now()});
  }
}

Watch::Callback::~Callback() {
  if (number_) {
    Watch& watch = instance();
    Lock lock(watch.mutex_);
    const RunningCallback callback = watch.running_.extract(*number_).mapped();
    lock.unlock();
    watch.writeBlocked(callback, true);
  }
}

void noteReceivedClass(int camera, const std::string& className) {
  Watch::instance().received(camera, className);
}

}  // namespace vod::host
