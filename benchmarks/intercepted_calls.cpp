// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "intercepted_calls.h"

#include <dlfcn.h>
#include <pthread.h>
#include <video_object_detection_subscriber.h>

#include <atomic>

namespace tarn::VOD::bench {
namespace {

/** What this program's function hides: that of the C library, or of the host platform. */
template <typename Function>
Function* hidden(Function* /*own*/, const char* name) {
  return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

thread_local Holds* recorded = nullptr;
thread_local bool looksForLock = false;
std::atomic<pthread_mutex_t*> handlerLock{nullptr};

/** The lock is recursive: what counts is the time from the first to the last of the calling thread's locks. */
struct Hold {
  int depth = 0;
  Clock::time_point since;
  Clock::duration serviceBefore{0};
};

thread_local Hold hold;
thread_local Clock::duration inService{0};
thread_local Clock::time_point calledAt;

bool isRecorded(const pthread_mutex_t* mutex) {
  return recorded != nullptr && mutex == handlerLock.load(std::memory_order_relaxed);
}

void beginHold() {
  if (hold.depth++ == 0) {
    hold.since = Clock::now();
    hold.serviceBefore = inService;
  }
}

void endHold() {
  if (--hold.depth == 0) {
    const Clock::duration whole = Clock::now() - hold.since;
    recorded->whole.push_back(whole);
    recorded->withoutService.push_back(whole - (inService - hold.serviceBefore));
  }
}

/** Calls the service's function of this name, and adds the time that it takes. */
template <auto* Own, typename... Arguments>
int ask(const char* name, Arguments... arguments) {
  static auto* const function = hidden(Own, name);
  const auto begin = Clock::now();
  const int result = function(arguments...);
  inService += Clock::now() - begin;
  return result;
}

std::atomic<video_object_detection_subscriber_detection_callback> libraryCallback{nullptr};

/** What the service calls in place of the library's function, which is the same for all subscriptions. */
void passFrameOn(const std::uint8_t* buffer, std::int32_t length, void* userData) {
  calledAt = Clock::now();
  libraryCallback.load(std::memory_order_relaxed)(buffer, length, userData);
}

}  // namespace

void recordHolds(Holds* holds) {
  recorded = holds;
}

void findHandlerLock(const std::function<void()>& deliver) {
  looksForLock = true;
  deliver();
  looksForLock = false;
}

Clock::duration timeInService() {
  return inService;
}

Clock::time_point libraryCalledAt() {
  return calledAt;
}

}  // namespace tarn::VOD::bench

using namespace tarn::VOD::bench;
using Subscriber = video_object_detection_subscriber_st;

extern "C" {

int pthread_mutex_lock(pthread_mutex_t* mutex) noexcept {
  static auto* const lock = hidden(&pthread_mutex_lock, "pthread_mutex_lock");
  const int result = lock(mutex);
  if (looksForLock) {
    handlerLock = mutex;
  }
  if (isRecorded(mutex)) {
    beginHold();
  }
  return result;
}

int pthread_mutex_unlock(pthread_mutex_t* mutex) noexcept {
  static auto* const unlock = hidden(&pthread_mutex_unlock, "pthread_mutex_unlock");
  if (isRecorded(mutex)) {
    endHold();
  }
  return unlock(mutex);
}

int video_object_detection_subscriber_create(Subscriber** subscriber, void* userData, int channel) {
  return ask<&video_object_detection_subscriber_create>("video_object_detection_subscriber_create", subscriber,
                                                        userData, channel);
}

int video_object_detection_subscriber_delete(Subscriber** subscriber) {
  return ask<&video_object_detection_subscriber_delete>("video_object_detection_subscriber_delete", subscriber);
}

int video_object_detection_subscriber_subscribe(Subscriber* subscriber) {
  return ask<&video_object_detection_subscriber_subscribe>("video_object_detection_subscriber_subscribe", subscriber);
}

int video_object_detection_subscriber_unsubscribe(Subscriber* subscriber) {
  return ask<&video_object_detection_subscriber_unsubscribe>("video_object_detection_subscriber_unsubscribe",
                                                             subscriber);
}

int video_object_detection_subscriber_set_get_detection_callback(
    Subscriber* subscriber, video_object_detection_subscriber_detection_callback callback) {
  libraryCallback = callback;
  return ask<&video_object_detection_subscriber_set_get_detection_callback>(
      "video_object_detection_subscriber_set_get_detection_callback", subscriber, &passFrameOn);
}

int video_object_detection_subscriber_set_teardown_callback(
    Subscriber* subscriber, video_object_detection_subscriber_teardown_callback callback) {
  return ask<&video_object_detection_subscriber_set_teardown_callback>(
      "video_object_detection_subscriber_set_teardown_callback", subscriber, callback);
}

int video_object_detection_subscriber_set_receive_empty_hits(Subscriber* subscriber, bool enabled) {
  return ask<&video_object_detection_subscriber_set_receive_empty_hits>(
      "video_object_detection_subscriber_set_receive_empty_hits", subscriber, enabled);
}

int video_object_detection_subscriber_use_channel_configuration(Subscriber* subscriber, bool enabled) {
  return ask<&video_object_detection_subscriber_use_channel_configuration>(
      "video_object_detection_subscriber_use_channel_configuration", subscriber, enabled);
}

int video_object_detection_set_channel_configuration(int channel, const std::uint8_t* configuration, std::size_t length,
                                                     char** error) {
  return ask<&video_object_detection_set_channel_configuration>("video_object_detection_set_channel_configuration",
                                                                channel, configuration, length, error);
}

int video_object_detection_subscriber_get_information(Subscriber* subscriber, std::uint8_t** information,
                                                      std::size_t* length, char** error) {
  return ask<&video_object_detection_subscriber_get_information>("video_object_detection_subscriber_get_information",
                                                                 subscriber, information, length, error);
}

}  // extern "C"
