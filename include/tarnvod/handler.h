// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_HANDLER_H
#define TARNVOD_HANDLER_H

#include <tarnvod/detection_data.h>
#include <tarnvod/detector_information.h>
#include <tarnvod/export.h>

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>

namespace tarn::VOD {

/** A region of interest: four numbers in the service's box convention, passed on unchanged and in this order. */
struct VodChannelConfiguration {
  float coord1;  ///< first number
  float coord2;  ///< second number
  float coord3;  ///< third number
  float coord4;  ///< fourth number
};

/**
 * The application's function for frames: receives the frame, which is then its own, and the camera number.
 *
 * It runs on a thread of the platform with none of the library's locks held, and may call every function of the
 * library, also to tear its own camera down. Frames of one camera come one after the other; those of different cameras
 * may come at the same time. The library copies the callable for every frame. What the callable throws passes through
 * the library into the platform, which is written in C: catch inside.
 */
using DetectionCallback = std::function<void(std::unique_ptr<DetectionData>, int)>;

/**
 * The process's connection to the camera's video object detection service.
 *
 * Cameras are counted from 1. A typical application calls `initialize`, sets cameras up, works until it is to
 * stop, tears each camera down and calls `deinitialize`:
 *
 * @code
 * tarn::VOD::Handler::initialize(5);
 * tarn::VOD::Handler::setup(1, [](std::unique_ptr<tarn::VOD::DetectionData> frame, int camera) {
 *   std::cout << "camera " << camera << ": " << *frame << '\n';
 * }, {"human"});
 * waitUntilToldToStop();
 * tarn::VOD::Handler::teardown(1);
 * tarn::VOD::Handler::deinitialize();
 * @endcode
 *
 * All functions are thread-safe: any of them may be called from any thread at any time. All of them may also be called
 * from a callback.
 *
 * | function | blocks on the service | throws |
 * | --- | --- | --- |
 * | `initialize` | while `deinitialize` runs elsewhere | `std::system_error` |
 * | `deinitialize` | while a retry runs | `std::system_error` |
 * | `setup` | yes | `std::system_error`, `std::bad_alloc`, what copying the callback throws |
 * | `teardown` | yes | `std::system_error` |
 * | `isDlpuEnabled` | yes | nothing |
 * | `getNumberOfChannels` | yes | nothing |
 * | `getNumberOfSimultaneousChannels` | yes | nothing |
 * | `getServiceVersion` | yes | `std::bad_alloc` |
 * | `getDetectorInformation` | yes | `std::runtime_error`, `std::system_error`, `std::bad_alloc` |
 * | `getSupportedClasses` | yes | `std::runtime_error`, `std::system_error`, `std::bad_alloc` |
 * | `getSupportedAttributes` | unless camera 1's names are known | `std::runtime_error`, `std::system_error`, `std::bad_alloc` |
 *
 * At the end of the process, once the library's static objects are being destroyed, every function returns at once:
 * `false`, 0, an empty text or an empty description.
 *
 * `std::system_error` means that a lock or a thread was not to be had. A function that takes the library's lock also
 * waits while another thread holds it; `setup` and the retries hold it for as long as they block on the service.
 *
 * When memory runs out while a message is parsed, Protocol Buffers 3.21 throw `std::bad_alloc`; version 36 may end the
 * process instead.
 */
class TARNVOD_EXPORT Handler {
 public:
  explicit Handler() = delete;  // explicit, or braces would still make one
  Handler(const Handler&) = delete;

  /**
   * Starts the thread that subscribes channels again whose set-up failed or whose subscription the service dropped.
   * Does nothing, not even change the period, when that thread is already running. Without it the other functions work,
   * but nothing is retried. Waits for a `deinitialize` under way on another thread, and then starts the thread again.
   *
   * @param retryPeriod  seconds between two rounds of retries; 0 or less means no pause at all, which keeps a processor
   *                     busy
   * @throw std::system_error  when the thread cannot be started
   */
  static void initialize(int retryPeriod);

  /**
   * Stops that thread and waits for it: for the round of retries that it may be in, and for one retry period. Does
   * nothing when it is not running. No camera is torn down; tear down each one first.
   *
   * Must be called before the process ends or the library is unloaded: a thread that still runs then ends the process
   * by `std::terminate`. The thread does not come along into a child of `fork`: there it counts as not running.
   *
   * @throw std::system_error  when called on that thread itself, from a callback that the platform runs there; the
   * thread then ends after its round, and the next call from elsewhere waits for it
   */
  static void deinitialize();

  /**
   * Sets a camera up: from now on its frames arrive at the callback. Equal to the function below without a region.
   */
  static bool setup(int camera, DetectionCallback callback, const std::set<std::string>& classes);

  /**
   * Sets a camera up: from now on its frames arrive at the callback, also those without any detection.
   *
   * For a camera that is already receiving, the callback and the classes are replaced and nothing else changes: a
   * channel configuration given then is ignored.
   *
   * For a camera that is pending, the new set-up takes the place of the retry: the pending callable is destroyed before
   * the platform is asked.
   *
   * A failure is reported in the system log (the first of a run of failures, then every fifth after it) and the set-up is
   * retried by the thread that `initialize` starts, until it succeeds or `teardown` gives it up. What failed before the
   * classes were found to be supported (one of them is not, or the service could not be reached) is retried without any
   * class: the camera then receives frames without detections until it is set up again.
   *
   * @param camera    the camera, counted from 1
   * @param callback  receives the frames; kept, and released by the time `teardown` returns, unless a frame is just
   * being delivered. An empty callable receives nothing
   * @param classes   names of the classes to receive, in lower case, out of `getSupportedClasses`; none means no
   * detections
   * @param channelConfiguration  the region of interest, if the detector shall look at a part of the image only
   * @return true when the camera is subscribed, false when that failed and will be retried
   * @throw std::system_error, std::bad_alloc, what copying the callback throws  and then nothing has been set up, and a
   *        retry that was pending is given up
   */
  static bool setup(int camera, DetectionCallback callback, const std::set<std::string>& classes,
                    const std::optional<VodChannelConfiguration>& channelConfiguration);

  /**
   * Ends a camera's subscription, or gives its retries up. An unknown camera is not an error. Failures of the platform
   * are reported in the system log; the camera is gone all the same.
   *
   * Whether a callback can still be running on another thread when this returns is the platform's choice; the
   * callable's state lives until it has returned.
   *
   * @param camera  the camera, counted from 1
   * @throw std::system_error  when the library's lock fails; nothing has changed then
   */
  static void teardown(int camera);

  /** Whether the service is enabled on this device. */
  static bool isDlpuEnabled();

  /** The number of video channels; 0, and an error in the system log, when the service does not answer. */
  static std::uint32_t getNumberOfChannels();

  /** The number of channels that can be analysed at the same time; 0, and an error in the system log, when the service
   * does not answer. */
  static std::uint32_t getNumberOfSimultaneousChannels();

  /** The version of the platform's library, "major.minor"; empty, with an error in the system log, when it does not
   * answer. */
  static std::string getServiceVersion();

  /**
   * What a camera's detector can do, asked from the service at each call. A service that fails to answer gives the
   * description of an empty message (camera number 1, nothing supported) and a warning in the system log.
   *
   * @param camera  the camera, counted from 1; it need not be set up
   * @throw std::runtime_error  "Failed to create subscription to vod." when the camera is not set up and the service
   *                            cannot be reached
   */
  static DetectorInformation getDetectorInformation(int camera);

  /**
   * The names of the classes that camera 1's detector supports, in lower case.
   *
   * @throw std::runtime_error  as `getDetectorInformation`
   */
  static std::set<std::string> getSupportedClasses();

  /**
   * Attribute type names with the names of their values, for camera 1. Types without values have an empty set. Answered
   * from what is known since camera 1 was last subscribed, or asked for here.
   *
   * @throw std::runtime_error  as `getDetectorInformation`
   */
  static std::map<std::string, std::set<std::string>> getSupportedAttributes();
};

/**
 * What camera 1's detector can do: the same as `Handler::getDetectorInformation(1)`, also in threads and errors.
 */
TARNVOD_EXPORT DetectorInformation getDetectorInformation();

}  // namespace tarn::VOD

#endif
