// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef VOD_HOST_REPLAY_REPLAYER_H
#define VOD_HOST_REPLAY_REPLAYER_H

#include "lock.h"
#include "replay/playback.h"

#include <chrono>
#include <condition_variable>
#include <functional>
#include <memory>
#include <string>
#include <thread>

namespace vod::host {

/** A thread that plays one recording, or one session, at a time. */
class Replayer {
 public:
  /** Delivers a scene of the replay with that number. */
  using Deliver = std::function<void(int replay, const Playback::Item& item)>;
  /** Returns when what has been delivered has been received. */
  using Finish = std::function<void()>;

  Replayer(Deliver deliver, Finish finish);
  /** Stops and waits for a running delivery. Must not be called on the thread itself. */
  ~Replayer();
  Replayer(const Replayer&) = delete;
  Replayer& operator=(const Replayer&) = delete;

  /** Plays this instead of the current playback; `replay`, never 0, is passed to `Deliver`. */
  void start(int replay, std::unique_ptr<Playback> playback);
  void stop();
  /**
   * Waits until the playback that was started last has been delivered to its end.
   *
   * @return false when the limit has passed first
   */
  bool waitForEnd(std::chrono::milliseconds limit);
  /** Whether the playback that was started last has been delivered to its end. */
  bool isAtEnd() const;

 private:
  void loop();
  void play(int replay, Playback& playback);
  bool waitUntilDue(int replay, std::chrono::steady_clock::time_point due);

  const Deliver deliver_;
  const Finish finish_;
  mutable Mutex mutex_;
  std::condition_variable changed_;
  std::unique_ptr<Playback> next_ TARNVOD_GUARDED_BY(mutex_);
  int replay_ TARNVOD_GUARDED_BY(mutex_) = 0;
  bool ended_ TARNVOD_GUARDED_BY(mutex_) = false;
  bool ending_ TARNVOD_GUARDED_BY(mutex_) = false;
  // Last, so that it starts when all other members are initialised.
  std::thread thread_;
};

}  // namespace vod::host

#endif
