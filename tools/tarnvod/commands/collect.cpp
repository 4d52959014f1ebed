// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "base/changed_message.h"
#include "base/clock.h"
#include "base/errors.h"
#include "base/output.h"
#include "base/service_manager.h"
#include "base/stop_signal.h"
#include "base/text.h"
#include "commands/subcommands.h"
#include "fleet/broker.h"
#include "fleet/collection.h"
#include "fleet/fleet_options.h"
#include "fleet/messages.h"
#include "fleet/topics.h"

#include <CLI/CLI.hpp>

#include <chrono>
#include <cstdint>
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
constexpr std::chrono::milliseconds longestWait{100};
constexpr std::chrono::milliseconds tick{100};
constexpr std::chrono::seconds retryPause{1};

struct CollectOptions {
  std::string database;
  std::string name = "collector";
  std::string site;
  BrokerOptions broker;
};

/** Stores the messages of a fleet, and reports to the publishers what is stored. */
class Collector {
 public:
  explicit Collector(const CollectOptions& options) : options_(options), collection_(options.database) {}

  void run() {
    manager_.reportReady();
    while (!stopRequested()) {
      try {
        serve();
      } catch (const BrokerProblem& problem) {
        message_.print(problem.what());
      }
      const auto retryAt = Clock::now() + retryPause;
      while (!stopRequested() && Clock::now() < retryAt) {
        manager_.reportAlive(Clock::now());
        std::this_thread::sleep_for(tick);
      }
    }
  }

  std::string summary() const {
    return counted(stored_, "frame") + " stored, " + std::to_string(repeated_) + " repeated, " +
           std::to_string(conflicting_) + " conflicting; " + counted(refused_, "message") + " refused";
  }

 private:
  void serve() {
    Broker broker(
        options_.broker, {"tarnvod-" + options_.name, true, std::nullopt},
        [this](const BrokerMessage& message) { take(message); }, [](int) {});
    broker.connect(stopRequested);
    broker.subscribe(topics(), stopRequested);
    message_.print(broker.name() + ": connected");
    while (broker.isConnected() && !stopRequested()) {
      manager_.reportAlive(Clock::now());
      broker.wait(hasBatch_ ? longestWait / 2 : tick);
      if (hasBatch_ && (batchSize_ >= largestBatch || Clock::now() - batchBegan_ >= longestWait)) {
        store(broker);
      }
    }
    if (hasBatch_) {
      store(broker);
    }
    broker.isConnected() ? broker.disconnect() : message_.print(broker.name() + ": " + broker.problem());
  }

  std::vector<std::string> topics() const {
    const std::string site = options_.site.empty() ? "+" : options_.site;
    return {"tarnvod/" + site + "/+/camera/+/frames", "tarnvod/" + site + "/+/camera/+/dropped",
            statusTopic(site, "+")};
  }

  /** Adds a message to the batch, which begins with the first one. */
  void take(const BrokerMessage& message) {
    if (!hasBatch_) {
      collection_.begin();
      hasBatch_ = true;
      batchBegan_ = Clock::now();
    }
    ++batchSize_;
    try {
      std::visit([this](const auto& each) { add(each); }, readMessage(message.topic, message.payload));
    } catch (const Refusal& refusal) {
      refuse(refusal.what(), message.topic);
    }
  }

  void add(const CollectedFrame& frame) {
    switch (collection_.add(frame)) {
      case Collection::Outcome::Stored:
        ++stored_;
        break;
      case Collection::Outcome::Repeated:
        ++repeated_;
        break;
      case Collection::Outcome::Conflicting:
        ++conflicting_;
        break;
    }
    const Envelope& envelope = frame.envelope;
    addRange(reports_[{frame.origin.site, frame.origin.device}].frames,
             {envelope.camera, frame.origin.start, envelope.sequence, envelope.sequence});
  }

  void add(const CollectedNote& note) {
    collection_.add(note);
    reports_[{note.origin.site, note.origin.device}].dropped.push_back(note.frames);
  }

  void add(const CollectedStatus& status) { collection_.add(status); }

  void refuse(const std::string& reason, std::string_view topic) {
    ++refused_;
    collection_.countRefusal(reason, printable(topic));
    if (refusalsReported_.insert(reason).second) {
      printMessage("tarnvod: refused a message on " + printable(cut(printable(topic), 80)) + ": " + reason);
    }
  }

  /** Commits, and then reports to the publishers; a report that gets lost is asked for by sending the frames again. */
  void store(Broker& broker) {
    collection_.commit();
    hasBatch_ = false;
    batchSize_ = 0;
    for (const auto& [device, frames] : std::exchange(reports_, {})) {
      if (broker.isConnected()) {
        broker.publish(storedTopic(device.first, device.second), storedJson(device.first, device.second, frames));
      }
    }
  }

  const CollectOptions& options_;
  Collection collection_;
  ServiceManager manager_;
  bool hasBatch_ = false;
  std::size_t batchSize_ = 0;
  Clock::time_point batchBegan_;
  std::map<std::pair<std::string, std::string>, StoredFrames> reports_;
  std::set<std::string> refusalsReported_;
  std::uint64_t stored_ = 0;
  std::uint64_t repeated_ = 0;
  std::uint64_t conflicting_ = 0;
  std::uint64_t refused_ = 0;
  ChangedMessage message_;
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
  command.add_option("database", options->database, "The SQLite database; made if it does not exist")
      ->type_name("FILE")
      ->required();
  addFleetName(command, "--site", options->site, "Only this site (default: all)");
  addFleetName(command, "--name", options->name,
               "Name of this collector; the broker keeps messages for it while it is away (default: collector)");
  addBrokerOptions(command, options->broker);
  return [options] { return collect(*options); };
}

}  // namespace tarn::command
