// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_TESTS_PLATFORM_HOST_CLIENT_H
#define TARNVOD_TESTS_PLATFORM_HOST_CLIENT_H

#include "support/thread_annotations.h"

#include <gmock/gmock.h>
#include <tarnvod/video_object_detection.pb.h>
#include <vod_host.h>

#include <condition_variable>
#include <functional>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace vod::host {

/** The arguments of a detection callback. */
struct Received {
  std::string bytes;
  std::int32_t length = 0;
  bool isNull = false;
  std::thread::id thread;
};

/** A subscriber as an application would use it, with an inbox. The destructor deletes it and waits for callbacks. */
class Client {
 public:
  /** What to do in the callbacks, after the scene or the teardown has gone into the inbox. */
  struct Reactions {
    std::function<void(Client&)> onScene;
    std::function<void(Client&)> onTeardown;
  };

  explicit Client(int channel, Reactions reactions = {});
  ~Client();
  Client(const Client&) = delete;
  Client& operator=(const Client&) = delete;

  Client& receiveEmptyHits();
  Client& useChannelConfiguration();
  /** Sets the callbacks and subscribes. */
  Client& subscribe();
  int trySubscribe();
  int unsubscribe();
  int remove();

  video_object_detection_subscriber_st* handle() const { return handle_; }
  int createResult() const { return createResult_; }
  std::vector<std::string> scenes() const;
  std::vector<Received> received() const;
  int teardowns() const;
  std::vector<std::thread::id> teardownThreads() const;
  /** Whether two callbacks ran at the same time. */
  bool hasOverlapped() const;

  void waitForScenes(std::size_t count);
  void waitForTeardowns(int count);

 private:
  static void onDetection(const std::uint8_t* buffer, std::int32_t length, void* userData);
  static void onTeardown(void* userData);
  class Running;
  void waitFor(const std::function<bool()>& condition);

  const Reactions reactions_;
  video_object_detection_subscriber_st* handle_ = nullptr;
  int createResult_ = 0;

  mutable tarn::VOD::AnnotatedMutex<std::mutex> mutex_;
  std::condition_variable changed_;
  std::vector<Received> received_ TARNVOD_GUARDED_BY(mutex_);
  std::vector<std::thread::id> teardownThreads_ TARNVOD_GUARDED_BY(mutex_);
  int running_ TARNVOD_GUARDED_BY(mutex_) = 0;
  bool hasOverlapped_ TARNVOD_GUARDED_BY(mutex_) = false;
};

/** Each test begins with a service that has two channels. */
class HostTest : public testing::Test {
 protected:
  HostTest() {
    reset();
    channel(0);
    channel(1);
  }
  ~HostTest() override {
    liftAllFaults();
    reset();
  }
};

/** A detection with its centre there. */
struct Centre {
  float x, y;
};
std::string sceneWith(const std::vector<Centre>& centres, std::uint64_t timestamp = 0);
std::string emptyScene(std::uint64_t timestamp);

/** A scene with that many detections in the centre of the image, some 20 bytes each; it has more than 4 KiB. */
std::string largeScene(std::size_t detections);

/** What the code prints on standard error. */
std::string errorsOf(const std::function<void()>& code);

}  // namespace vod::host

#endif
