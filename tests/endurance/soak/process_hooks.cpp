// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

// Functions of the C library and of the platform that the program defines itself: what passes between the platform and
// the library is counted, log lines are counted, and time passes faster.

#include "endurance/soak/process_hooks.h"

#include <dlfcn.h>
#include <video_object_detection_subscriber.h>

#include <atomic>
#include <cerrno>
#include <ctime>

namespace tarn::test {
namespace {

using DetectionCallback = video_object_detection_subscriber_detection_callback;

thread_local std::int64_t received = 0;
std::atomic<std::int64_t> lines = 0;
std::atomic<DetectionCallback> libraryCallback = nullptr;

void countAndPassOn(const std::uint8_t* buffer, std::int32_t length, void* userData) {
  ++received;
  libraryCallback.load()(buffer, length, userData);
}

}  // namespace

std::int64_t framesReceivedHere() {
  return received;
}

std::int64_t logLines() {
  return lines;
}

}  // namespace tarn::test

extern "C" {

int video_object_detection_subscriber_set_get_detection_callback(
    video_object_detection_subscriber_st* subscriber, video_object_detection_subscriber_detection_callback callback) {
  using namespace tarn::test;
  using Function = int (*)(video_object_detection_subscriber_st*, DetectionCallback);
  static const auto platforms =
      reinterpret_cast<Function>(dlsym(RTLD_NEXT, "video_object_detection_subscriber_set_get_detection_callback"));
  libraryCallback = callback;  // the library has only one
  return platforms(subscriber, countAndPassOn);
}

int nanosleep(const timespec* requested, timespec* /*remaining*/) {
  constexpr std::int64_t nanosecondsPerSecond = 1'000'000'000;
  const std::int64_t nanoseconds =
      (std::int64_t{requested->tv_sec} * nanosecondsPerSecond + requested->tv_nsec) / tarn::test::timeFactor;
  timespec shorter{};
  shorter.tv_sec = static_cast<std::time_t>(nanoseconds / nanosecondsPerSecond);
  shorter.tv_nsec = static_cast<decltype(shorter.tv_nsec)>(nanoseconds % nanosecondsPerSecond);
  errno = clock_nanosleep(CLOCK_MONOTONIC, 0, &shorter, nullptr);
  return errno == 0 ? 0 : -1;
}

void syslog(int /*priority*/, const char* /*format*/, ...) {
  ++tarn::test::lines;
}

void __syslog_chk(int /*priority*/, int /*flag*/, const char* /*format*/, ...) {
  ++tarn::test::lines;
}

}  // extern "C"
