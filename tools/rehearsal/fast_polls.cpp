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
#include <optional>

using namespace tarn::rehearsal;

namespace {

constexpr Time second = 1'000'000'000;
constexpr Time millisecond = 1'000'000;

/** A span for the original; null for no limit. */
class RealSpan {
 public:
  explicit RealSpan(std::optional<Time> span) : span_(toTimespec(toReal(span.value_or(0)))), isLimited_(span) {}
  const timespec* get() const { return isLimited_ ? &span_ : nullptr; }

 private:
  timespec span_;
  bool isLimited_;
};

RealSpan realSpan(const timespec* span) {
  return RealSpan(span == nullptr ? std::nullopt : std::optional(toTime(*span)));
}

/** Negative means no limit. */
RealSpan realSpan(int milliseconds) {
  return RealSpan(milliseconds < 0 ? std::nullopt : std::optional(Time{milliseconds} * millisecond));
}

int realMilliseconds(int milliseconds) {
  return milliseconds <= 0
             ? milliseconds
             : static_cast<int>((toReal(Time{milliseconds} * millisecond) + millisecond - 1) / millisecond);
}

int pollFor(pollfd* descriptors, nfds_t count, const RealSpan& span, const sigset_t* signals) {
  static auto* const wait = original<int(pollfd*, nfds_t, const timespec*, const sigset_t*)>("ppoll");
  return wait(descriptors, count, span.get(), signals);
}

int selectFor(int count, fd_set* readable, fd_set* writable, fd_set* exceptional, const RealSpan& span,
              const sigset_t* signals) {
  static auto* const wait = original<int(int, fd_set*, fd_set*, fd_set*, const timespec*, const sigset_t*)>("pselect");
  return wait(count, readable, writable, exceptional, span.get(), signals);
}

}  // namespace

TARNVOD_REPLACEMENT int poll(pollfd* descriptors, nfds_t count, int milliseconds) {
  return pollFor(descriptors, count, realSpan(milliseconds), nullptr);
}

TARNVOD_REPLACEMENT int ppoll(pollfd* descriptors, nfds_t count, const timespec* span, const sigset_t* signals) {
  return pollFor(descriptors, count, realSpan(span), signals);
}

// Programs that are built with fortification call these two. They may, as the originals do, check the size.
TARNVOD_REPLACEMENT int __poll_chk(pollfd* descriptors, nfds_t count, int milliseconds, std::size_t /*size*/) {
  return pollFor(descriptors, count, realSpan(milliseconds), nullptr);
}

TARNVOD_REPLACEMENT int __ppoll_chk(pollfd* descriptors, nfds_t count, const timespec* span, const sigset_t* signals,
                                    std::size_t /*size*/) {
  return pollFor(descriptors, count, realSpan(span), signals);
}

TARNVOD_REPLACEMENT int select(int count, fd_set* readable, fd_set* writable, fd_set* exceptional, timeval* span) {
  const std::optional<Time> time =
      span == nullptr ? std::nullopt : std::optional(Time{span->tv_sec} * second + Time{span->tv_usec} * 1000);
  return selectFor(count, readable, writable, exceptional, RealSpan(time), nullptr);
}

TARNVOD_REPLACEMENT int pselect(int count, fd_set* readable, fd_set* writable, fd_set* exceptional,
                                const timespec* span, const sigset_t* signals) {
  return selectFor(count, readable, writable, exceptional, realSpan(span), signals);
}

TARNVOD_REPLACEMENT int epoll_pwait(int descriptor, epoll_event* events, int most, int milliseconds,
                                    const sigset_t* signals) {
  static auto* const wait = original<int(int, epoll_event*, int, int, const sigset_t*)>("epoll_pwait");
  return wait(descriptor, events, most, realMilliseconds(milliseconds), signals);
}

TARNVOD_REPLACEMENT int epoll_wait(int descriptor, epoll_event* events, int most, int milliseconds) {
  return epoll_pwait(descriptor, events, most, milliseconds, nullptr);
}

TARNVOD_REPLACEMENT int sigtimedwait(const sigset_t* signals, siginfo_t* information, const timespec* span) {
  static auto* const wait = original<int(const sigset_t*, siginfo_t*, const timespec*)>("sigtimedwait");
  return wait(signals, information, realSpan(span).get());
}
