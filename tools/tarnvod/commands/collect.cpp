// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "base/changed_message.h"
#include "base/clock.h"
#include "base/errors.h"
#include "base/output.h"
#include "base/service_manager.h"
#include "base/stop_signal.h"
#include "base/text.h"
#include "base/wall_clock.h"
#include "commands/subcommands.h"
#include "fleet/broker.h"
#include "fleet/collection.h"
#include "fleet/collector_figures.h"
#include "fleet/fleet_options.h"
#include "fleet/messages.h"
#include "fleet/topics.h"
#include "metrics/metrics_server.h"

#include <CLI/CLI.hpp>

#include <chrono>
#include <cstdint>
#include <iterator>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <thread>
#include <utility>
#include <variant>
#include <vector>

namespace tarn::command {
namespace {

/** What bounds the memory, and how long a frame waits for others. */
constexpr std::size_t largestBatch = 500;
constexpr std::size_t largestBatchBytes = 8U << 20U;
constexpr std::chrono::milliseconds longestWait{100};
constexpr std::chrono::milliseconds tick{100};
constexpr std::chrono::seconds retryPause{1};

struct CollectOptions {
  std::string database;
  std::string name = "collector";
  std::string site;
  BrokerOptions broker;
  std::string metrics;
};

/** Messages that are stored together. */
struct Batch {
  struct Message {
    std::string topic;
    std::string payload;
  };

  std::vector<Message> messages;
  std::size_t bytes = 0;
  Clock::time_point began;  ///< when the first one came

  bool isDue() const {
    return !messages.empty() &&
           (messages.size() >= largestBatch || bytes >= largestBatchBytes || Clock::now() - began >= longestWait);
  }
};

/** By site and device: what its publisher has to know. */
using Reports = std::map<std::pair<std::string, std::string>, StoredFrames>;

/** What became of a batch. */
struct Stored {
  CollectorFigures figures;
  Reports reports;
};

/** Stores the messages of a fleet, and reports to the publishers what is stored. */
class Collector {
 public:
  explicit Collector(const CollectOptions& options) : options_(options) {
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

  void run() {
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

  std::string summary() const {
    return metrics_.summary() +
           (batch_.messages.empty() ? "" : "; " + counted(batch_.messages.size(), "message") + " not stored");
  }

 private:
  void reportAlive() {
    const Clock::time_point now = Clock::now();
    manager_.reportAlive(now);
    liveness_.note(now);
  }

  void open() {
    if (!collection_) {
      collection_ = std::make_unique<Collection>(options_.database);
    }
  }

  void serve() {
    store();
    Broker broker(
        options_.broker, {"tarnvod-" + options_.name, true, std::nullopt},
        [this](const BrokerMessage& message) { take(message); }, [](int) {});
    broker.connect(stopRequested);
    broker.subscribe(topics(), stopRequested);
    metrics_.setConnected(true);
    message_.print(broker.name() + ": connected");
    while (broker.isConnected() && !stopRequested()) {
      reportAlive();
      broker.wait(batch_.messages.empty() ? tick : longestWait / 2);
      if (batch_.isDue()) {
        store();
      }
      report(broker);
    }
    store();
    report(broker);
    broker.isConnected() ? broker.disconnect() : message_.print(broker.name() + ": " + broker.problem());
  }

  void waitBeforeRetry() {
    const auto retryAt = Clock::now() + retryPause;
    while (!stopRequested() && Clock::now() < retryAt) {
      reportAlive();
      std::this_thread::sleep_for(tick);
    }
  }

  std::vector<std::string> topics() const {
    const std::string site = options_.site.empty() ? "+" : options_.site;
    return {"tarnvod/" + site + "/+/camera/+/frames", "tarnvod/" + site + "/+/camera/+/dropped",
            statusTopic(site, "+")};
  }

  void take(const BrokerMessage& message) {
    if (batch_.messages.empty()) {
      batch_.began = Clock::now();
    }
    batch_.messages.push_back({std::string(message.topic), std::string(message.payload)});
    batch_.bytes += message.payload.size();
  }

  /** Commits the batch. @throw DatabaseProblem, and the batch stays */
  void store() {
    if (batch_.messages.empty()) {
      return;
    }
    Stored result;
    collection_->begin();
    for (const Batch::Message& message : batch_.messages) {
      add(message, result);
    }
    collection_->commit();
    batch_ = {};
    metrics_.addCommitted(result.figures, wallTimeNow().microseconds);
    for (auto& [device, frames] : result.reports) {
      addReport(reports_[device], std::move(frames));
    }
  }

  void add(const Batch::Message& message, Stored& result) {
    try {
      std::visit([&](const auto& each) { add(each, result); }, readMessage(message.topic, message.payload));
    } catch (const Refusal& refusal) {
      ++result.figures.refused[refusal.what()];
      refuse(refusal.what(), message.topic);
    }
  }

  void add(const CollectedFrame& frame, Stored& result) {
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

  static void noteStored(const Envelope& envelope, CollectorFigures& figures) {
    ++figures.stored;
    if (envelope.clockSet) {
      figures.arrivals.push_back(envelope.arrival);
    }
  }

  void add(const CollectedNote& note, Stored& result) {
    collection_->add(note);
    result.reports[{note.origin.site, note.origin.device}].dropped.push_back(note.frames);
  }

  void add(const CollectedStatus& status, Stored& /*result*/) { collection_->add(status); }

  void refuse(const std::string& reason, std::string_view topic) {
    collection_->countRefusal(reason, printable(topic));
    if (refusalsReported_.insert(reason).second) {
      printMessage("tarnvod: refused a message on " + printable(cut(printable(topic), 80)) + ": " + reason);
    }
  }

  /** Of what a lost connection left behind, too. */
  static void addReport(StoredFrames& all, StoredFrames more) {
    std::move(more.frames.begin(), more.frames.end(), std::back_inserter(all.frames));
    std::move(more.dropped.begin(), more.dropped.end(), std::back_inserter(all.dropped));
  }

  /** A report that gets lost is asked for by sending the frames again. */
  void report(Broker& broker) {
    for (const auto& [device, frames] : std::exchange(reports_, {})) {
      if (broker.isConnected()) {
        broker.publish(storedTopic(device.first, device.second), storedJson(device.first, device.second, frames));
      }
    }
  }

  const CollectOptions& options_;
  std::unique_ptr<Collection> collection_;  // none while its server does not answer
  ServiceManager manager_;
  Batch batch_;
  Reports reports_;  // those that are still to be sent
  std::set<std::string> refusalsReported_;
  ChangedMessage message_;
  CollectorMetrics metrics_;
  Liveness liveness_;
  std::optional<MetricsServer> metricsServer_;  // last, because it reports the others
};

int collect(const CollectOptions& options) {
  Collector collector(options);
  collector.run();
  printMessage("tarnvod: " + collector.summary());
  return success;
}

}  // namespace

Action defineCollect(CLI::App& command) {
  const auto options = std::make_shared<CollectOptions>();
  command
      .add_option("database", options->database,
                  "The SQLite database, made if it does not exist; or a PostgreSQL database, postgresql://...")
      ->type_name("FILE|URL")
      ->required();
  addFleetName(command, "--site", options->site, "Only this site (default: all)");
  addFleetName(command, "--name", options->name,
               "Name of this collector; the broker keeps messages for it while it is away (default: collector)");
  addMetricsOption(command, options->metrics);
  addBrokerOptions(command, options->broker);
  return [options] { return collect(*options); };
}

}  // namespace tarn::command
