// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_DETAIL_CAMERA_WATCH_H
#define TARNVOD_DETAIL_CAMERA_WATCH_H

#include <tarnvod/detail/callback_scope.h>
#include <tarnvod/detail/watched_camera.h>

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <exception>
#include <map>
#include <memory>
#include <mutex>
#include <new>
#include <system_error>
#include <thread>
#include <type_traits>
#include <utility>

namespace tarn::VOD::detail {

/** The time that cameras live in. Tests put their own in its place. */
struct SteadyTime {
  static CameraFlow::Time now() { return std::chrono::steady_clock::now(); }

  /** What the watch waits for: that something changes, or a point in time. */
  class Condition {
   public:
    void waitUntil(std::unique_lock<std::mutex>& lock, CameraFlow::Time time) {
      if (time == CameraFlow::Time::max()) {
        changed_.wait(lock);
      } else {
        changed_.wait_until(lock, time);
      }
    }
    void notify() { changed_.notify_all(); }

   private:
    std::condition_variable changed_;
  };
};

/**
 * All cameras of the process, and the thread that acts when their frames stay away. It runs while there are cameras.
 *
 * One mutex guards everything here. It is never held while the library or the application is called.
 */
template <typename TimeSource>
class CameraWatch {
 public:
  using Id = std::uint32_t;
  using CameraPointer = std::shared_ptr<WatchedCamera>;

  /** The one of the process. Never destroyed: the platform may call back when the process ends. */
  static CameraWatch& instance() {
    static CameraWatch& watch = *new CameraWatch;
    static const StopAtExit stop;
    return watch;
  }

  /**
   * Adds a camera and tries to set it up. The watch's thread goes on with it.
   *
   * @throw std::bad_alloc, std::system_error  when memory runs out or no thread can be started; nothing was added then
   */
  Id open(const CameraPointer& camera) {
    SetupOutcome owned{CameraState::Waiting, "another Camera of this process has this number"};
    Lock lock(mutex_);
    startThread();
    const Id id = ++lastId_;
    cameras_.emplace(id, camera);
    if (isFirstOfItsNumber(id, *camera)) {
      attempt(id, camera, lock);
    } else {
      camera->take(std::move(owned), TimeSource::now());
    }
    changed_.notify();
    return id;
  }

  /**
   * Ends a camera: when this returns, no callback of it runs any more, but for those that the calling thread is inside
   * of.
   */
  void close(Id id, const CameraPointer& camera) {
    {
      Lock lock(mutex_);
      camera->isClosing = true;
      const int own = CallbackScope::depth(camera.get());
      ended_.wait(lock, [&] { return camera->running == own && (own > 0 || !camera->isBusy); });
      if (camera->isBusy) {
        // The platform may wait for the very callback that we are inside of, so this one must not wait in turn.
        camera->isAbandoned = true;
        return;
      }
    }
    end(id, *camera);
  }

  CameraStatus status(const WatchedCamera& camera) const {
    const Lock lock(mutex_);
    return camera.status;
  }

  /** The callable for the library: small and trivially copyable, so that a copy of it needs no memory. */
  static DetectionCallback receiverOf(Id camera, CameraFlow::Setup setup) { return Receiver{camera, setup}; }

  /** A frame arrives, on a thread of the platform. */
  void deliver(Id id, CameraFlow::Setup setup, std::unique_ptr<DetectionData> frame) noexcept {
    const CameraFlow::Time arrival = TimeSource::now();
    const CameraPointer camera = beginFrame(id, setup, !frame->detections.empty(), arrival);
    if (camera == nullptr) {
      return;
    }
    const CallbackScope scope(camera.get());
    const bool succeeded = call(*camera, camera->onFrame, std::move(frame));
    endFrame(*camera, succeeded, arrival, TimeSource::now());
  }

 private:
  using Lock = std::unique_lock<std::mutex>;

  /** One life of the thread. A new one may begin while an earlier one comes to its end. */
  struct Run {
    std::thread thread;
    bool isStopping = false;
  };

  struct StopAtExit {
    ~StopAtExit() { instance().stopThread(Lock(instance().mutex_)); }
  };

  struct Receiver {
    Id camera;
    CameraFlow::Setup setup;
    void operator()(std::unique_ptr<DetectionData> frame, int /*camera*/) const {
      instance().deliver(camera, setup, std::move(frame));
    }
  };
  static_assert(std::is_trivially_copyable_v<Receiver> && sizeof(Receiver) <= 2 * sizeof(void*));

  CameraWatch() = default;

  // ---- Frames ----

  /** The camera whose application gets the frame, if it is to get it. */
  CameraPointer beginFrame(Id id, CameraFlow::Setup setup, bool hasDetections, CameraFlow::Time arrival) {
    const Lock lock(mutex_);
    const auto found = cameras_.find(id);
    if (found == cameras_.end() || found->second->isClosing) {
      return nullptr;
    }
    WatchedCamera& camera = *found->second;
    const CameraState before = camera.status.state;
    const bool isAccepted = camera.accept(setup, hasDetections, arrival);
    if (camera.status.state != before || camera.flow.isDoubtful()) {
      changed_.notify();
    }
    if (!isAccepted) {
      return nullptr;
    }
    ++camera.running;
    camera.flow.beginCallback();
    return found->second;
  }

  void endFrame(WatchedCamera& camera, bool succeeded, CameraFlow::Time arrival, CameraFlow::Time now) {
    const Lock lock(mutex_);
    camera.endFrame(succeeded, arrival, now);
    if (camera.isChanged) {
      changed_.notify();
    }
    endCallback(camera);
  }

  void endCallback(WatchedCamera& camera) {
    --camera.running;
    if (camera.isClosing) {
      ended_.notify_all();
    }
  }

  /** Calls the application. What it throws is noted, and goes no further. */
  template <typename Callback, typename Argument>
  bool call(WatchedCamera& camera, const Callback& callback, Argument&& argument) {
    try {
      callback(std::forward<Argument>(argument));
      return true;
    } catch (const std::exception& exception) {
      const Lock lock(mutex_);
      camera.noteException(exception.what());
    } catch (...) {
      const Lock lock(mutex_);
      camera.noteException("not a std::exception");
    }
    return false;
  }

  // ---- The thread ----

  void startThread() {
    if (run_ == nullptr) {
      const auto run = std::make_shared<Run>();
      run->thread = std::thread([this, run] { watch(*run); });
      run_ = run;
    }
  }

  /** Waits for the thread's end, unless that is the calling one. */
  void stopThread(Lock lock) {
    if (run_ == nullptr || run_->thread.get_id() == std::this_thread::get_id()) {
      return;
    }
    const std::shared_ptr<Run> run = std::exchange(run_, nullptr);
    run->isStopping = true;
    changed_.notify();
    lock.unlock();
    run->thread.join();
  }

  void watch(const Run& run) {
    Lock lock(mutex_);
    while (!run.isStopping) {
      const Due due = findDue(TimeSource::now());
      if (due.camera == nullptr || TimeSource::now() < due.time) {
        changed_.waitUntil(lock, due.time);
      } else {
        serve(due.id, due.camera, lock);
      }
    }
  }

  /** Which camera is next, and when. */
  struct Due {
    Id id = 0;
    CameraPointer camera;
    CameraFlow::Time time = CameraFlow::Time::max();
  };

  Due findDue(CameraFlow::Time now) const {
    Due next;
    for (const auto& [id, camera] : cameras_) {
      if (const CameraFlow::Time time = dueTime(id, *camera, now); time < next.time) {
        next = {id, camera, time};
      }
    }
    return next;
  }

  CameraFlow::Time dueTime(Id id, const WatchedCamera& camera, CameraFlow::Time now) const {
    if (camera.isBusy || camera.isClosing) {
      return CameraFlow::Time::max();
    }
    if (camera.isChanged) {
      return camera.nextReport;
    }
    return isFirstOfItsNumber(id, camera) ? camera.nextStep(now) : CameraFlow::Time::max();
  }

  /** Does the next thing for a camera. Releases the lock while the library or the application is called. */
  void serve(Id id, const CameraPointer& camera, Lock& lock) {
    if (camera->isChanged) {
      report(*camera, lock);
    } else if (!camera->fallSilentIfQuiet(TimeSource::now())) {
      attempt(id, camera, lock);
    }
  }

  void attempt(Id id, const CameraPointer& camera, Lock& lock) {
    const DetectionCallback receiver = receiverOf(id, camera->flow.beginSetup(TimeSource::now()));
    const Existing existing = camera->nextAttempt();
    camera->isBusy = true;
    lock.unlock();
    SetupOutcome outcome = camera->setup.attempt(receiver, existing);
    lock.lock();
    camera->isBusy = false;
    if (camera->isAbandoned) {
      lock.unlock();
      end(id, *camera);
      lock.lock();
      return;
    }
    camera->take(std::move(outcome), TimeSource::now());
    ended_.notify_all();
  }

  /** Calls the application with the state. Without memory for that, it is tried again later. */
  void report(WatchedCamera& camera, Lock& lock) {
    try {
      const CameraStatus status = camera.status;
      camera.isChanged = false;
      ++camera.running;
      lock.unlock();
      {
        const CallbackScope scope(&camera);
        call(camera, camera.onState, status);
      }
      lock.lock();
      endCallback(camera);
    } catch (const std::bad_alloc&) {
      camera.nextReport = TimeSource::now() + CameraFlow::retryPeriod;
    }
  }

  // ---- Cameras ----

  /** Of several cameras of one number, the first one has it. */
  bool isFirstOfItsNumber(Id id, const WatchedCamera& camera) const {
    const auto first = std::find_if(cameras_.begin(), cameras_.end(), [&](const auto& entry) {
      return entry.second->setup.camera() == camera.setup.camera();
    });
    return first->first == id;
  }

  bool hasNumber(Id id, const WatchedCamera& camera) const {
    const Lock lock(mutex_);
    return isFirstOfItsNumber(id, camera);
  }

  /** Ends a camera that is closing, and with the last one the thread. */
  void end(Id id, const WatchedCamera& camera) noexcept {
    if (hasNumber(id, camera)) {
      try {
        camera.setup.end();
      } catch (const std::system_error&) {
        // The library's lock fails. What it still sends finds no camera.
      }
    }
    Lock lock(mutex_);
    cameras_.erase(id);
    changed_.notify();
    if (cameras_.empty() && !CallbackScope::isInsideAny()) {
      stopThread(std::move(lock));
    }
  }

  mutable std::mutex mutex_;
  typename TimeSource::Condition changed_;  ///< the thread has to look again
  std::condition_variable ended_;           ///< a callback or an attempt of a camera that is closing has ended

  // Guarded by the mutex.
  std::map<Id, CameraPointer> cameras_;
  std::shared_ptr<Run> run_;
  Id lastId_ = 0;
};

}  // namespace tarn::VOD::detail

#endif
