// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

// The functions that wait for descriptors or signals, up to a time.

#include "fast_time.h"

#include <poll.h>
#include <signal.h>
#include <sys/epoll.h>
#include <sys/select.h>
#include <sys/time.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <optional>
#include <vector>

using namespace tarn::rehearsal;

namespace {

constexpr Time second = 1'000'000'000;
constexpr Time millisecond = 1'000'000;

std::optional<Time> spanOf(const timespec* span) {
  return span == nullptr ? std::nullopt : std::optional(toTime(*span));
}

/** Negative means no limit. */
std::optional<Time> spanOf(int milliseconds) {
  return milliseconds < 0 ? std::nullopt : std::optional(Time{milliseconds} * millisecond);
}

/** Rounded up; negative for no limit. */
int inMilliseconds(const timespec* span) {
  return span == nullptr ? -1 : static_cast<int>((toTime(*span) + millisecond - 1) / millisecond);
}

int pollFor(pollfd* descriptors, nfds_t count, WaitLimit limit, const sigset_t* signals) {
  static auto* const wait = original<int(pollfd*, nfds_t, const timespec*, const sigset_t*)>("ppoll");
  int result = 0;
  do {
    result = wait(descriptors, count, limit.realRest(), signals);
  } while (result == 0 && !limit.isOver());
  return result;
}

/** A set of descriptors that a wait changes, and that the next one needs as it was. Programs may use larger ones than `fd_set`. */
class WaitedFor {
 public:
  WaitedFor(fd_set* set, int count) : set_(set) {
    if (set != nullptr && count > 0) {
      wanted_.resize((static_cast<std::size_t>(count) + NFDBITS - 1) / NFDBITS * sizeof(fd_mask));
      std::memcpy(wanted_.data(), set, wanted_.size());
    }
  }
  fd_set* get() {
    if (!wanted_.empty()) {
      std::memcpy(set_, wanted_.data(), wanted_.size());
    }
    return set_;
  }

 private:
  fd_set* set_;
  std::vector<char> wanted_;
};

int selectFor(int count, fd_set* readableSet, fd_set* writableSet, fd_set* exceptionalSet, WaitLimit limit,
              const sigset_t* signals) {
  WaitedFor readable(readableSet, count);
  WaitedFor writable(writableSet, count);
  WaitedFor exceptional(exceptionalSet, count);
  static auto* const wait = original<int(int, fd_set*, fd_set*, fd_set*, const timespec*, const sigset_t*)>("pselect");
  int result = 0;
  do {
    result = wait(count, readable.get(), writable.get(), exceptional.get(), limit.realRest(), signals);
  } while (result == 0 && !limit.isOver());
  return result;
}

}  // namespace

TARNVOD_REPLACEMENT int poll(pollfd* descriptors, nfds_t count, int milliseconds) {
  return pollFor(descriptors, count, WaitLimit(spanOf(milliseconds)), nullptr);
}

TARNVOD_REPLACEMENT int ppoll(pollfd* descriptors, nfds_t count, const timespec* span, const sigset_t* signals) {
  return pollFor(descriptors, count, WaitLimit(spanOf(span)), signals);
}

// Programs that are built with fortification call these two. They may, as the originals do, check the size.
TARNVOD_REPLACEMENT int __poll_chk(pollfd* descriptors, nfds_t count, int milliseconds, std::size_t /*size*/) {
  return pollFor(descriptors, count, WaitLimit(spanOf(milliseconds)), nullptr);
}

TARNVOD_REPLACEMENT int __ppoll_chk(pollfd* descriptors, nfds_t count, const timespec* span, const sigset_t* signals,
                                    std::size_t /*size*/) {
  return pollFor(descriptors, count, WaitLimit(spanOf(span)), signals);
}

TARNVOD_REPLACEMENT int select(int count, fd_set* readable, fd_set* writable, fd_set* exceptional, timeval* span) {
  const std::optional<Time> time =
      span == nullptr ? std::nullopt : std::optional(Time{span->tv_sec} * second + Time{span->tv_usec} * 1000);
  return selectFor(count, readable, writable, exceptional, WaitLimit(time), nullptr);
}

TARNVOD_REPLACEMENT int pselect(int count, fd_set* readable, fd_set* writable, fd_set* exceptional,
                                const timespec* span, const sigset_t* signals) {
  return selectFor(count, readable, writable, exceptional, WaitLimit(spanOf(span)), signals);
}

TARNVOD_REPLACEMENT int epoll_pwait(int descriptor, epoll_event* events, int most, int milliseconds,
                                    const sigset_t* signals) {
  static auto* const wait = original<int(int, epoll_event*, int, int, const sigset_t*)>("epoll_pwait");
  WaitLimit limit(spanOf(milliseconds));
  int result = 0;
  do {
    result = wait(descriptor, events, most, inMilliseconds(limit.realRest()), signals);
  } while (result == 0 && !limit.isOver());
  return result;
}

TARNVOD_REPLACEMENT int epoll_wait(int descriptor, epoll_event* events, int most, int milliseconds) {
  return epoll_pwait(descriptor, events, most, milliseconds, nullptr);
}

TARNVOD_REPLACEMENT int sigtimedwait(const sigset_t* signals, siginfo_t* information, const timespec* span) {
  static auto* const wait = original<int(const sigset_t*, siginfo_t*, const timespec*)>("sigtimedwait");
  WaitLimit limit(spanOf(span));
  int result = 0;
  do {
    result = wait(signals, information, limit.realRest());
  } while (result < 0 && errno == EAGAIN && !limit.isOver());
  return result;
}
