// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "support/retry_sleep.h"

#include <dlfcn.h>

#include <cerrno>
#include <condition_variable>
#include <cstring>
#include <ctime>
#include <mutex>
#include <optional>
#include <stdexcept>

namespace tarn::test {
namespace {

using std::chrono::nanoseconds;

/** How a sleep ended: in time, or by a signal with some time remaining. */
using Ending = std::optional<nanoseconds>;

struct Sleeps {
  std::mutex mutex;
  std::condition_variable changed;
  bool controlled = false;
  bool allReleased = false;
  std::vector<nanoseconds> requested;
  std::vector<Ending> endings;  // of the first sleeps; the library sleeps when there are fewer than were requested

  bool isAsleep() const { return requested.size() > endings.size(); }
};

/** Never destroyed: a thread may sleep until the process ends. */
Sleeps& sleeps() {
  static auto& instance = *new Sleeps;
  return instance;
}

nanoseconds toDuration(const timespec& time) {
  return std::chrono::seconds(time.tv_sec) + nanoseconds(time.tv_nsec);
}

timespec toTimespec(nanoseconds duration) {
  const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(duration);
  timespec time{};
  time.tv_sec = static_cast<std::time_t>(seconds.count());
  time.tv_nsec = static_cast<decltype(time.tv_nsec)>((duration - seconds).count());
  return time;
}

bool isLibraryCode(const void* address) {
  Dl_info object{};
  return dladdr(address, &object) != 0 && std::strstr(object.dli_fname, "libtarnvod.so") != nullptr;
}

/** Waits for the sleep's end, or returns nothing when no test controls sleeps. */
std::optional<Ending> sleepUnderControl(nanoseconds duration) {
  auto& all = sleeps();
  std::unique_lock lock(all.mutex);
  if (!all.controlled) {
    return std::nullopt;
  }
  const auto index = all.requested.size();
  all.requested.push_back(duration);
  if (all.allReleased) {
    all.endings.emplace_back();
  }
  all.changed.notify_all();
  all.changed.wait(lock, [&] { return all.endings.size() > index; });
  return all.endings[index];
}

void waitUntilAsleep(Sleeps& all, std::unique_lock<std::mutex>& lock) {
  if (!all.changed.wait_for(lock, std::chrono::seconds(30), [&] { return all.isAsleep(); })) {
    throw std::runtime_error("the library did not go to sleep");
  }
}

void endSleep(Ending ending) {
  auto& all = sleeps();
  std::unique_lock lock(all.mutex);
  waitUntilAsleep(all, lock);
  all.endings.push_back(ending);
  all.changed.notify_all();
}

}  // namespace

RetrySleep::RetrySleep() {
  auto& all = sleeps();
  const std::lock_guard lock(all.mutex);
  all.requested.clear();
  all.requested.reserve(10'000);  // a sleep then begins without allocating, for tests in which memory runs out
  all.endings.clear();
  all.allReleased = false;
  all.controlled = true;
}

RetrySleep::~RetrySleep() {
  releaseAll();
  auto& all = sleeps();
  const std::lock_guard lock(all.mutex);
  all.controlled = false;
}

nanoseconds RetrySleep::waitUntilAsleep() const {
  auto& all = sleeps();
  std::unique_lock lock(all.mutex);
  test::waitUntilAsleep(all, lock);
  return all.requested.back();
}

void RetrySleep::release() {
  endSleep(std::nullopt);
}

void RetrySleep::interrupt(nanoseconds remaining) {
  endSleep(remaining);
}

void RetrySleep::releaseAll() {
  auto& all = sleeps();
  const std::lock_guard lock(all.mutex);
  all.allReleased = true;
  all.endings.resize(all.requested.size());
  all.changed.notify_all();
}

std::vector<nanoseconds> RetrySleep::requested() const {
  auto& all = sleeps();
  const std::lock_guard lock(all.mutex);
  return all.requested;
}

}  // namespace tarn::test

extern "C" int nanosleep(const timespec* requested, timespec* remaining) {
  using namespace tarn::test;
  const auto ending =
      isLibraryCode(__builtin_return_address(0)) ? sleepUnderControl(toDuration(*requested)) : std::optional<Ending>();
  if (!ending) {
    errno = clock_nanosleep(CLOCK_MONOTONIC, 0, requested, remaining);
    return errno == 0 ? 0 : -1;
  }
  if (!*ending) {
    return 0;
  }
  if (remaining != nullptr) {
    *remaining = toTimespec(**ending);
  }
  errno = EINTR;
  return -1;
}
