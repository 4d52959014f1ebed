// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_COMMAND_WAKE_UP_H
#define TARNVOD_COMMAND_WAKE_UP_H

namespace tarn::command {

/** Ends another thread's wait in `poll`. Thread-safe. */
class WakeUp {
 public:
  /** @throw Failure when the system has no descriptor left */
  WakeUp();
  ~WakeUp();
  WakeUp(const WakeUp&) = delete;
  WakeUp& operator=(const WakeUp&) = delete;

  /** Makes the descriptor readable until `clear`. */
  void signal() const;
  void clear() const;

  int descriptor() const { return descriptor_; }

 private:
  int descriptor_ = -1;
};

}  // namespace tarn::command

#endif
