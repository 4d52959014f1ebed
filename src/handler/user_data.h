// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_HANDLER_USER_DATA_H
#define TARNVOD_HANDLER_USER_DATA_H

#include "support/thread_annotations.h"

#include <cstddef>
#include <cstdint>
#include <forward_list>
#include <memory>
#include <mutex>
#include <type_traits>
#include <utility>

namespace tarn::VOD {

/**
 * What the platform's user data points to: one object for each subscription, so that a callback of an earlier
 * subscription of the same camera is recognised.
 */
struct UserData {
  std::int32_t camera;  // first: the user data is also a pointer to the camera number
  UserData* next;       // among those that rest
};
static_assert(std::is_standard_layout_v<UserData>);

/**
 * Owns the user data of all subscriptions. The platform may run a callback after the subscriber was deleted, so an
 * object whose subscription has ended rests until many later subscriptions have ended too, and is reused then: memory
 * stays bounded however often a camera is subscribed again. Thread-safe.
 */
class UserDataPool : public std::enable_shared_from_this<UserDataPool> {
 public:
  /** The number of later subscriptions that end before the memory of an ended one is reused. */
  static constexpr std::size_t rest = 4096;

  class Return {
   public:
    Return() = default;
    explicit Return(std::shared_ptr<UserDataPool> pool) : pool_(std::move(pool)) {}
    void operator()(UserData* data) const noexcept { pool_->putToRest(*data); }

   private:
    std::shared_ptr<UserDataPool> pool_;
  };
  /** Keeps the pool alive, and gives the object back to it. */
  using Pointer = std::unique_ptr<UserData, Return>;

  Pointer make(std::int32_t camera) {
    const ScopedLock lock(mutex_);
    UserData* const data = resting_ > rest ? takeOldest() : &objects_.emplace_front();
    data->camera = camera;
    return {data, Return(shared_from_this())};
  }

 private:
  void putToRest(UserData& data) noexcept {
    const ScopedLock lock(mutex_);
    data.next = nullptr;
    (oldest_ == nullptr ? oldest_ : newest_->next) = &data;
    newest_ = &data;
    ++resting_;
  }

  UserData* takeOldest() TARNVOD_REQUIRES(mutex_) {
    --resting_;
    return std::exchange(oldest_, oldest_->next);
  }

  AnnotatedMutex<std::mutex> mutex_;
  std::forward_list<UserData> objects_ TARNVOD_GUARDED_BY(mutex_);
  UserData* oldest_ TARNVOD_GUARDED_BY(mutex_) = nullptr;
  UserData* newest_ TARNVOD_GUARDED_BY(mutex_) = nullptr;
  std::size_t resting_ TARNVOD_GUARDED_BY(mutex_) = 0;
};

}  // namespace tarn::VOD

#endif
