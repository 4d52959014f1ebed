// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

/**
 * @file
 * A camera's frames with everything around them taken care of: outages, state and a clean end. All of it is in this
 * header and those that it includes.
 */

#ifndef TARNVOD_CAMERA_H
#define TARNVOD_CAMERA_H

#include <tarnvod/camera_status.h>
#include <tarnvod/detail/camera_handle.h>
#include <tarnvod/detection_data.h>
#include <tarnvod/handler.h>

#include <functional>
#include <initializer_list>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <utility>

namespace tarn::VOD {

/** What to ask for. */
struct CameraRequest {
  std::set<std::string> classes;                  ///< names of classes, in any case; none for all the detector knows
  std::optional<VodChannelConfiguration> region;  ///< the region of interest; none for the whole image
};

/**
 * One camera's subscription, for as long as the object exists.
 *
 * @code
 * tarn::VOD::Camera camera(1, {"human"}, [](auto frame) { std::cout << *frame << '\n'; },
 *                          [](const auto& status) { std::cerr << status << '\n'; });
 * std::cin.get();
 * @endcode
 *
 * Nothing else is needed: no `Handler::initialize`, no `setup`, no `teardown`. After an outage of the service, of any
 * length and at any time, frames come again with the classes and the region that were asked for, within two seconds of
 * the service's return as a rule. Why none come is in `status`, and is reported as it changes.
 *
 * **Frames.** They arrive as those of `Handler`: also without any detection, on a thread of the platform, in order. A
 * frame that may have been made without the classes, which happens after an outage when the application has called
 * `Handler::initialize`, is held back and counted. That is a frame without detections that arrives more than 0.75 s
 * after the one before, other than by the application's own delay. (This relies on a retry period of at least a second;
 * with a period of 0 or less such frames can pass, until the set-up is renewed after ten seconds.)
 *
 * **State.** A camera is `Receiving` once it is set up, `Silent` when frames stay away for 0.75 s and for three times as
 * long as usual, `Waiting` when it is not set up because the service does not answer or refuses, and `Refused` when the
 * detector does not know a class. In the last two the set-up is tried again each second.
 *
 * **Slow callbacks.** How long the application takes with a frame matters neither for the state nor for the set-up: the
 * service waits meanwhile, and the time is in `status`. One limit remains: an outage that begins and ends within a
 * callback of more than a second leaves no pause to be seen. If the application has called `Handler::initialize`, frames
 * that were made without the classes can then pass, until the set-up is renewed after ten seconds. A `FrameQueue` as the
 * callback keeps it short.
 *
 * **Threads.** The constructor sets the camera up on the calling thread, and the destructor ends the subscription there.
 * Frames arrive on threads of the platform. All cameras of a process share one more thread, which the first one starts
 * and the last one ends. It renews set-ups, and it runs the state callbacks, one after the other. An application that
 * blocks it in a state callback delays the recovery of all cameras. All functions are thread-safe and may be called from
 * a callback, also from one of this camera.
 *
 * **Mistakes.** A number less than 1 and an empty callback are exceptions. What only the service can know is in the state
 * and its reason: classes that the camera's detector does not know, a number that the service does not have, a region or a
 * further subscription that it refuses, a service that is disabled or does not answer. `docs/troubleshooting.md` has each
 * reason with its remedy.
 *
 * **The end.** Once the destructor has returned, no callback runs: it waits for those that run on other threads. Called
 * from inside of a callback of the same camera, it waits for all but that one, and what the callback is made of lives
 * until it returns; the subscription may then end a moment later. As usual, a lock that a callback takes must not be held
 * by the thread that destroys the camera. At the end of the process, or of a library that contains this code, no
 * `Camera` should be left.
 *
 * **Callbacks that throw.** The exception goes no further. It is counted, its text kept in the status, and the state
 * callback is called at the first in a row. The next frame is delivered as usual.
 *
 * **Several of one number.** The first `Camera` of a number gets its frames. Another one is `Waiting`, says so, and takes
 * the first one's place when that ends. What is set up for the number through `Handler` is ended when the `Camera` is
 * made; what is set up or torn down later is taken back, as after any silence, except that a region given there stays
 * until the camera is subscribed again. A `Camera` therefore owns its number.
 *
 * `Handler::initialize`, when the application has called it, is left as it is; so is its thread when a `Camera` ends.
 */
class Camera {
 public:
  /** Receives a frame, which is then the application's own. Runs on a thread of the platform. */
  using FrameCallback = std::function<void(std::unique_ptr<DetectionData>)>;
  /** Receives the status after a change of state, reason or refused classes. Runs on the cameras' thread. */
  using StateCallback = std::function<void(const CameraStatus&)>;

  /**
   * Sets the camera up, or begins to try. Blocks on the service.
   *
   * @param camera   the camera, counted from 1
   * @param classes  names of the classes to receive, in any case; none for all that the detector knows
   * @param onFrame  receives the frames; kept until the destructor has returned
   * @param onState  receives the state, first the one that the constructor leaves; may be empty. Kept likewise
   * @throw std::invalid_argument  when the number is less than 1 or the callback for frames is empty
   * @throw std::bad_alloc, std::system_error  when memory runs out or no thread can be started
   */
  Camera(int camera, std::set<std::string> classes, FrameCallback onFrame, StateCallback onState = {})
      : Camera(camera, CameraRequest{std::move(classes), std::nullopt}, std::move(onFrame), std::move(onState)) {}

  /** As above; so that an empty list in braces is one of classes. */
  Camera(int camera, std::initializer_list<std::string> classes, FrameCallback onFrame, StateCallback onState = {})
      : Camera(camera, std::set<std::string>(classes), std::move(onFrame), std::move(onState)) {}

  /** As above, also with a region of interest. */
  Camera(int camera, CameraRequest request, FrameCallback onFrame, StateCallback onState = {})
      : watched_(detail::CameraSetup(camera, request.classes, request.region), std::move(onFrame), std::move(onState)) {
  }

  Camera(const Camera&) = delete;
  Camera& operator=(const Camera&) = delete;

  /** Ends the subscription. Blocks on the service, and waits for callbacks that run on other threads. */
  ~Camera() = default;

  /** The present state and the counts so far. Never blocks on the service. */
  CameraStatus status() const { return watched_.status(); }

 private:
  detail::CameraHandle<detail::SteadyTime> watched_;
};

}  // namespace tarn::VOD

#endif
