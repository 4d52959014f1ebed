// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "fleet/collector.h"

#include "base/clock.h"
#include "base/errors.h"
#include "base/output.h"
#include "base/stop_signal.h"
#include "base/text.h"
#include "base/wall_clock.h"
#include "fleet/message_reader.h"
#include "fleet/topics.h"

#include <chrono>
#include <iterator>
#include <thread>
#include <variant>

namespace tarn::command {
namespace {

constexpr std::chrono::milliseconds tick{100};
constexpr std::chrono::seconds retryPause{1};

void noteStored(const Envelope& envelope, CollectorFigures& figures) {
  ++figures.stored;
  if (envelope.clockSet) {
    figures.arrivals.push_back(envelope.arrival);
  }
}

/** Of what a lost connection left behind, too. */
void addReport(StoredFrames& all, StoredFrames more) {
  std::move(more.frames.begin(), more.frames.end(), std::back_inserter(all.frames));
  std::move(more.dropped.begin(), more.dropped.end(), std::back_inserter(all.dropped));
}

}  // namespace

Collector::Collector(const CollectorOptions& options) : options_(options) {
  try {
    open();
  } catch (const DatabaseProblem& problem) {
    message_.print(problem.what());
  }
  if (!options.metrics.empty()) {
    metricsServer_.emplace(
        options.metrics, [this] { return metrics_.text(); }, liveness_);
  }
}

void Collector::run() {
  manager_.reportReady();
  while (!stopRequested()) {
    try {
      open();
      serve();
    } catch (const BrokerProblem& problem) {
      message_.print(problem.what());
    } catch (const DatabaseProblem& problem) {
      // The batch stays, and is stored first once the database is back.
      message_.print(problem.what());
      collection_.reset();
    }
    metrics_.setConnected(false);
    waitBeforeRetry();
  }
}

std::string Collector::summary() const {
  return metrics_.summary() +
         (batch_.isEmpty() ? "" : "; " + counted(batch_.messages().size(), "message") + " not stored");
}

void Collector::open() {
  if (!collection_) {
    collection_ = std::make_unique<Collection>(options_.database);
  }
}

void Collector::serve() {
  store();
  Broker broker(
      options_.broker, {"tarnvod-" + options_.name, true, std::nullopt},
      [this](const BrokerMessage& message) { batch_.add(message); }, [](int) {});
  broker.connect(stopRequested);
  broker.subscribe(topics(), stopRequested);
  metrics_.setConnected(true);
  message_.print(broker.name() + ": connected");
  while (broker.isConnected() && !stopRequested()) {
    reportAlive();
    broker.wait(batch_.isEmpty() ? tick : MessageBatch::longestWait / 2);
    if (batch_.isDue()) {
      store();
    }
    report(broker);
  }
  store();
  report(broker);
  broker.isConnected() ? broker.disconnect() : message_.print(broker.name() + ": " + broker.problem());
}

void Collector::reportAlive() {
  const Clock::time_point now = Clock::now();
  manager_.reportAlive(now);
  liveness_.note(now);
}

void Collector::waitBeforeRetry() {
  const auto retryAt = Clock::now() + retryPause;
  while (!stopRequested() && Clock::now() < retryAt) {
    reportAlive();
    std::this_thread::sleep_for(tick);
  }
}

std::vector<std::string> Collector::topics() const {
  const std::string site = options_.site.empty() ? "+" : options_.site;
  return {"tarnvod/" + site + "/+/camera/+/frames", "tarnvod/" + site + "/+/camera/+/dropped", statusTopic(site, "+")};
}

void Collector::store() {
  if (batch_.isEmpty()) {
    return;
  }
  Stored result;
  collection_->begin();
  for (const MessageBatch::Message& message : batch_.messages()) {
    add(message, result);
  }
  collection_->commit();
  batch_.clear();
  metrics_.addCommitted(result.figures, wallTimeNow().microseconds);
  for (auto& [device, frames] : result.reports) {
    addReport(reports_[device], std::move(frames));
  }
}

void Collector::add(const MessageBatch::Message& message, Stored& result) {
  try {
    std::visit([&](const auto& each) { add(each, result); }, readMessage(message.topic, message.payload));
  } catch (const Refusal& refusal) {
    ++result.figures.refused[refusal.what()];
    refuse(refusal.what(), message.topic);
  }
}

void Collector::add(const CollectedFrame& frame, Stored& result) {
  switch (collection_->add(frame)) {
    case Collection::Outcome::Stored:
      noteStored(frame.envelope, result.figures);
      break;
    case Collection::Outcome::Repeated:
      ++result.figures.repeated;
      break;
    case Collection::Outcome::Conflicting:
      ++result.figures.conflicting;
      break;
  }
  const Envelope& envelope = frame.envelope;
  addRange(result.reports[{frame.origin.site, frame.origin.device}].frames,
           {envelope.camera, frame.origin.start, envelope.sequence, envelope.sequence});
}

void Collector::add(const CollectedNote& note, Stored& result) {
  collection_->add(note);
  result.reports[{note.origin.site, note.origin.device}].dropped.push_back(note.frames);
}

void Collector::add(const CollectedStatus& status, Stored& /*result*/) {
  collection_->add(status);
}

void Collector::refuse(const std::string& reason, std::string_view topic) {
  collection_->countRefusal(reason, printable(topic));
  if (refusalsReported_.insert(reason).second) {
    printMessage("tarnvod: refused a message on " + printable(cut(printable(topic), 80)) + ": " + reason);
  }
}

/** A report that gets lost is asked for by sending the frames again. */
void Collector::report(Broker& broker) {
  for (const auto& [device, frames] : std::exchange(reports_, {})) {
    if (broker.isConnected()) {
      broker.publish(storedTopic(device.first, device.second), storedJson(device.first, device.second, frames));
    }
  }
}

}  // namespace tarn::command
