// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_TESTS_ENDURANCE_SOAK_FEED_H
#define TARNVOD_TESTS_ENDURANCE_SOAK_FEED_H

#include <atomic>
#include <cstdint>
#include <string>
#include <vector>

namespace tarn::test {

/** Where a camera's frames went. All are counted by the camera's own thread. */
struct FrameCounts {
  std::int64_t sent = 0;
  std::int64_t received = 0;        ///< by the library; the others were sent while nobody was subscribed
  std::int64_t delivered = 0;       ///< to the application's callback
  std::int64_t withoutClasses = 0;  ///< of these, without detections: a retry that met an outage asks for no class
  std::int64_t duringTeardown = 0;  ///< dropped, because the application was tearing the camera down
  std::int64_t unexplained = 0;     ///< dropped for no reason: a fault
  std::int64_t wrong = 0;           ///< delivered, but not what was sent: a fault
};

/** How often the cameras were disturbed. */
struct Disturbances {
  std::atomic<std::int64_t> drops = 0;
  std::atomic<std::int64_t> outages = 0;
  std::atomic<std::int64_t> teardowns = 0;
  std::atomic<std::int64_t> updates = 0;
};

/**
 * One camera: its frames, which a thread of its own sends as fast as they are taken, and the disturbances that this
 * thread brings upon the camera's neighbour meanwhile.
 */
class Feed {
 public:
  /** Makes the channel and sets the camera up. */
  Feed(int camera, int cameras, Disturbances& disturbances);

  /** Sends until it has delivered this many frames in all, or is stopped. */
  void sendUntilDelivered(std::int64_t frames, const std::atomic<bool>& stopped);

  FrameCounts counts() const { return counts_; }
  /** May be asked while the thread runs. */
  std::int64_t deliveredSoFar() const { return deliveredSoFar_; }

  /** Waits until the camera, which may have been dropped, is subscribed. */
  void waitUntilSubscribed() const;

 private:
  void sendOne();
  void disturbNeighbour();

  int camera_;
  int neighbour_;
  Disturbances& disturbances_;
  std::string scene_;
  std::uint64_t random_;
  FrameCounts counts_;
  std::atomic<std::int64_t> deliveredSoFar_ = 0;
};

}  // namespace tarn::test

#endif
