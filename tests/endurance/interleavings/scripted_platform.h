// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_TESTS_ENDURANCE_INTERLEAVINGS_SCRIPTED_PLATFORM_H
#define TARNVOD_TESTS_ENDURANCE_INTERLEAVINGS_SCRIPTED_PLATFORM_H

#include <video_object_detection_subscriber.h>

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace tarn::test {

/**
 * The platform library, as small as it can be: each of its functions is a scheduling point, has no thread and no lock of
 * its own, and complains of what a program must not do. It does not wait for callbacks when a subscriber is deleted, so
 * that they arrive as late as the schedule wants.
 */
class ScriptedPlatform {
 public:
  struct Subscriber {
    int camera;
    void* userData;
    video_object_detection_subscriber_detection_callback onDetection = nullptr;
    video_object_detection_subscriber_teardown_callback onTeardown = nullptr;
    bool subscribed = false;  ///< as the service sees it
    bool deleted = false;
  };

  /** Called for whatever a program must not do. Does not return. */
  using Complaint = std::function<void(const std::string&)>;

  explicit ScriptedPlatform(Complaint complain);
  ~ScriptedPlatform();
  ScriptedPlatform(const ScriptedPlatform&) = delete;
  ScriptedPlatform& operator=(const ScriptedPlatform&) = delete;

  static ScriptedPlatform& current();

  /**
   * Delivers a frame of one person, if the camera is subscribed. The callback may come late.
   *
   * @param beforeCallback  runs at once before the callback
   */
  void sendFrame(int camera, const std::function<void()>& beforeCallback);

  /** Ends a camera's subscription, if it has one, and notifies the program. The callback may come late. */
  void drop(int camera);

  /** Makes the next subscriptions fail. */
  void refuse(int subscriptions) { refusals_ = subscriptions; }

  /** Runs inside the next call of `subscribe`, on its thread. */
  void duringNextSubscribe(std::function<void()> action) { duringSubscribe_ = std::move(action); }

  int subscriptions(int camera) const;
  int notDeleted() const;

  // What the C functions do.
  Subscriber& create(int camera, void* userData);
  Subscriber& use(video_object_detection_subscriber_st* handle, const char* function);
  int subscribe(video_object_detection_subscriber_st* handle);
  void unsubscribe(video_object_detection_subscriber_st* handle);
  void remove(video_object_detection_subscriber_st* handle);

 private:
  Subscriber* subscribed(int camera);

  const Complaint complain_;
  std::vector<Subscriber*> subscribers_;
  int refusals_ = 0;
  std::function<void()> duringSubscribe_;
};

}  // namespace tarn::test

#endif
