// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "fleet/sender.h"

#include "fleet/messages.h"
#include "fleet/topics.h"

#include <algorithm>
#include <exception>
#include <utility>

namespace tarn::command {
namespace {

/** Entries that are on their way at once; what bounds the memory. */
constexpr std::size_t window = 200;
constexpr std::chrono::seconds retryPause{1};
constexpr std::chrono::seconds shortestPatience{5};
constexpr std::chrono::seconds longestPatience{60};
constexpr std::chrono::seconds timeToEnd{5};
constexpr std::chrono::milliseconds tick{200};

}  // namespace

Sender::Sender(Spool& spool, const Origin& origin, const BrokerOptions& broker, bool keepUntilStored)
    : spool_(spool), origin_(origin), options_(broker), keepUntilStored_(keepUntilStored), thread_([this] { run(); }) {}

Sender::~Sender() {
  {
    const Lock lock(mutex_);
    isEnding_ = true;
  }
  ending_.notify_all();
  wake();
  if (thread_.joinable()) {
    thread_.join();
  }
}

void Sender::setStatus(std::string text) {
  {
    const Lock lock(mutex_);
    status_ = std::move(text);
    statusIsNew_ = true;
  }
  wake();
}

void Sender::finish(std::function<std::string()> makeStatus) {
  {
    const Lock lock(mutex_);
    makeLastStatus_ = std::move(makeStatus);
    deadline_ = Clock::now() + timeToEnd;
    isEnding_ = true;
  }
  ending_.notify_all();
  wake();
  thread_.join();
}

void Sender::run() {
  while (!isEnding_) {
    try {
      serve();
    } catch (const std::exception& problem) {
      message_.print(problem.what());
    }
    isConnected_ = false;
    waitBeforeRetry();
  }
}

void Sender::serve() {
  const auto isCancelled = [this] { return isEnding_.load(); };
  Broker broker(
      options_,
      {"tarnvod-" + origin_.site + "-" + origin_.device, false,
       BrokerClient::Will{statusTopic(origin_.site, origin_.device), goneJson(origin_)}},
      [this](const BrokerMessage& message) { onMessage(message); }, [this](int message) { onTaken(message); });
  broker.connect(isCancelled);
  if (keepUntilStored_ && !isEnding_) {
    broker.subscribe({storedTopic(origin_.site, origin_.device)}, isCancelled);
  }
  if (!broker.isConnected()) {
    return;
  }
  isConnected_ = true;
  ++connections_;
  message_.print(broker.name() + ": connected");
  patience_ = shortestPatience;
  startOver();
  sendStatus(broker);
  while (broker.isConnected() && !isDone()) {
    sendEntries(broker);
    sendOverdueAgain();
    broker.wait(tick, wakeUp_.descriptor());
    wakeUp_.clear();
    const Lock lock(mutex_);
    if (statusIsNew_ && !isEnding_) {
      statusIsNew_ = false;
      broker.publish(statusTopic(origin_.site, origin_.device), status_, true);
    }
  }
  endInOrder(broker);
}

void Sender::sendStatus(Broker& broker) {
  const Lock lock(mutex_);
  statusIsNew_ = false;
  if (!status_.empty()) {
    lastStatus_ = broker.publish(statusTopic(origin_.site, origin_.device), status_, true);
  }
}

/** Sends everything again that is not settled. */
void Sender::startOver() {
  untaken_.clear();
  underway_.clear();
  spool_.rewind();
}

/** Nothing new while a report is overdue, so that what is sent again does not queue behind what is new. */
void Sender::sendEntries(Broker& broker) {
  if (isReportOverdue()) {
    return;
  }
  while (underway_.size() < window) {
    const auto given = spool_.next();
    if (!given) {
      return;
    }
    send(broker, *given);
  }
}

void Sender::send(Broker& broker, const Spool::Given& given) {
  const FrameRange& frames = given.entry.frames;
  const bool isFrame = given.entry.kind == SpoolEntry::Kind::Frame;
  const std::string topic = isFrame ? framesTopic(origin_.site, origin_.device, frames.camera)
                                    : droppedTopic(origin_.site, origin_.device, frames.camera);
  const int message = broker.publish(topic, isFrame ? given.entry.payload : droppedJson(origin_, frames));
  ++sent_;
  const Key key{given.entry.kind, frames.camera, frames.start, frames.first};
  untaken_[message] = key;
  underway_[key] = {given.position, !(furthest_ < given.position), std::nullopt};
  furthest_ = std::max(furthest_, given.position);
}

void Sender::settle(const SpoolPosition& position) {
  spool_.settle(position);
  ++settled_;
}

/** The broker delivers what it has confirmed, so the collector's time begins with the confirmation. */
bool Sender::isReportOverdue() const {
  return std::any_of(underway_.begin(), underway_.end(), [now = Clock::now(), this](const auto& entry) {
    const auto& takenAt = entry.second.takenAt;
    return takenAt && now - *takenAt > patience_;
  });
}

/**
 * A message, or the report of a collector, may be lost with a broker that is restarted. What the broker has not
 * confirmed is still queued here, and is waited for so that it does not queue twice.
 */
void Sender::sendOverdueAgain() {
  if (untaken_.empty() && isReportOverdue()) {
    startOver();
    patience_ = std::min<Clock::duration>(2 * patience_, longestPatience);
  }
}

void Sender::onTaken(int message) {
  lastStatusIsTaken_ = lastStatusIsTaken_ || message == lastStatus_;
  const auto found = untaken_.find(message);
  if (found == untaken_.end()) {
    return;
  }
  const auto entry = underway_.find(found->second);
  untaken_.erase(found);
  if (entry == underway_.end()) {
    return;
  }
  if (keepUntilStored_) {
    entry->second.takenAt = Clock::now();
  } else {
    settle(entry->second.position);
    underway_.erase(entry);
  }
}

void Sender::onMessage(const BrokerMessage& message) {
  if (const auto stored = parseStored(message.payload)) {
    for (const FrameRange& frames : stored->frames) {
      settleStored(SpoolEntry::Kind::Frame, frames);
    }
    for (const FrameRange& frames : stored->dropped) {
      settleStored(SpoolEntry::Kind::Dropped, frames);
    }
  }
}

void Sender::settleStored(SpoolEntry::Kind kind, const FrameRange& frames) {
  auto entry = underway_.lower_bound({kind, frames.camera, frames.start, frames.first});
  const Key last{kind, frames.camera, frames.start, frames.last};
  while (entry != underway_.end() && !(last < entry->first)) {
    adaptPatience(entry->second);
    settle(entry->second.position);
    entry = underway_.erase(entry);
  }
}

/** Twice what the collector took. A report on what was sent more than once may be on an earlier sending: it says nothing. */
void Sender::adaptPatience(const Underway& entry) {
  if (entry.takenAt && !entry.isRepeated) {
    patience_ = std::clamp<Clock::duration>(2 * (Clock::now() - *entry.takenAt), shortestPatience, longestPatience);
  }
}

/** Whether an orderly end has taken all its time, or another one was asked for. */
bool Sender::isOverdue() {
  const Lock lock(mutex_);
  return Clock::now() > deadline_;
}

/** Whether an orderly end has come to its end, or another one was asked for. */
bool Sender::isDone() {
  return isEnding_ && (isOverdue() || spool_.figures().waiting == 0);
}

void Sender::endInOrder(Broker& broker) {
  if (!broker.isConnected()) {
    message_.print(broker.name() + ": " + broker.problem());
    return;
  }
  lastStatusIsTaken_ = false;
  {
    const Lock lock(mutex_);
    status_ = makeLastStatus_ ? makeLastStatus_() : status_;
  }
  sendStatus(broker);
  while (broker.isConnected() && !lastStatusIsTaken_ && !isOverdue()) {
    broker.wait(tick);
  }
  broker.disconnect();
}

void Sender::waitBeforeRetry() {
  Lock lock(mutex_);
  ending_.wait_for(lock.forWaiting(), retryPause, [this] { return isEnding_.load(); });
}

}  // namespace tarn::command
