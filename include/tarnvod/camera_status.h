// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

/**
 * @file
 * The state of a `Camera`. All of it is in this header; values that can be kept, copied, compared and printed.
 */

#ifndef TARNVOD_CAMERA_STATUS_H
#define TARNVOD_CAMERA_STATUS_H

#include <chrono>
#include <cstdint>
#include <optional>
#include <ostream>
#include <set>
#include <string>
#include <tuple>

namespace tarn::VOD {

/** How a `Camera` is. */
enum class CameraState {
  Waiting,    ///< not set up: the service does not answer or refuses; the set-up is retried
  Receiving,  ///< set up, and frames come as they should
  Silent,     ///< set up, but frames stay away for longer than they should; the set-up is renewed
  Refused,    ///< not set up: the detector does not know all classes; retried, because a detector can change
};

/** Prints the name. */
inline std::ostream& operator<<(std::ostream& out, CameraState state) {
  switch (state) {
    case CameraState::Waiting:
      return out << "Waiting";
    case CameraState::Receiving:
      return out << "Receiving";
    case CameraState::Silent:
      return out << "Silent";
    case CameraState::Refused:
      return out << "Refused";
  }
  return out << "CameraState(" << static_cast<int>(state) << ')';
}

/**
 * What a `Camera` knows of itself at one moment. Each frame that was received is counted as delivered or as held back.
 */
struct CameraStatus {
  int camera = 0;                            ///< the number, counted from 1
  CameraState state = CameraState::Waiting;  ///< how the camera is
  std::string reason;                        ///< why it is so, in words; empty while receiving
  std::set<std::string> refusedClasses;      ///< classes that the detector does not know; empty unless refused

  std::uint64_t framesReceived = 0;   ///< frames that came from the service
  std::uint64_t framesDelivered = 0;  ///< frames that were given to the application
  std::uint64_t framesHeldBack = 0;   ///< frames that may have been made without the classes that were asked for
  std::optional<std::chrono::steady_clock::time_point> lastFrame;  ///< when the last frame was delivered

  std::uint64_t interruptions = 0;                  ///< how often frames stayed away once they had come
  std::chrono::nanoseconds lastInterruption{0};     ///< from the last frame before it to the first one after it
  std::chrono::nanoseconds longestInterruption{0};  ///< the longest of these

  std::chrono::nanoseconds longestCallback{0};  ///< the longest time that the application took for one frame
  std::uint64_t callbackExceptions = 0;         ///< how often a callback of the application threw
  std::string lastException;                    ///< the text of the last of these exceptions
};

namespace detail {

/** All members, in their order. */
inline auto members(const CameraStatus& status) {
  return std::tie(status.camera, status.state, status.reason, status.refusedClasses, status.framesReceived,
                  status.framesDelivered, status.framesHeldBack, status.lastFrame, status.interruptions,
                  status.lastInterruption, status.longestInterruption, status.longestCallback,
                  status.callbackExceptions, status.lastException);
}

/** A duration as it is printed. */
inline double inSeconds(std::chrono::nanoseconds duration) {
  return std::chrono::duration<double>(duration).count();
}

}  // namespace detail

/** Compares all members. */
inline bool operator==(const CameraStatus& left, const CameraStatus& right) {
  return detail::members(left) == detail::members(right);
}

/** Compares all members. */
inline bool operator!=(const CameraStatus& left, const CameraStatus& right) {
  return !(left == right);
}

/** Prints one line, without its end: camera, state, reason, and those of the counts that are not 0. */
inline std::ostream& operator<<(std::ostream& out, const CameraStatus& status) {
  out << "camera " << status.camera << ": " << status.state;
  if (!status.reason.empty()) {
    out << ", " << status.reason;
  }
  out << "; frames: " << status.framesDelivered << " delivered";
  if (status.framesHeldBack != 0) {
    out << ", " << status.framesHeldBack << " held back";
  }
  if (status.interruptions != 0) {
    out << "; interruptions: " << status.interruptions << ", the last " << detail::inSeconds(status.lastInterruption)
        << " s, the longest " << detail::inSeconds(status.longestInterruption) << " s";
  }
  if (status.callbackExceptions != 0) {
    out << "; exceptions: " << status.callbackExceptions << ", the last '" << status.lastException << '\'';
  }
  return out;
}

}  // namespace tarn::VOD

#endif
