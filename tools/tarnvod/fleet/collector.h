// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_COMMAND_COLLECTOR_H
#define TARNVOD_COMMAND_COLLECTOR_H

#include "base/changed_message.h"
#include "base/service_manager.h"
#include "fleet/broker.h"
#include "fleet/broker_options.h"
#include "fleet/collection.h"
#include "fleet/collector_figures.h"
#include "fleet/message_batch.h"
#include "fleet/messages.h"
#include "metrics/liveness.h"
#include "metrics/metrics_server.h"

#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace tarn::command {

struct CollectorOptions {
  std::string database;            ///< path of an SQLite file, or URL of a PostgreSQL database
  std::string name = "collector";  ///< for the broker, which keeps messages for this name
  std::string site;                ///< empty for all
  BrokerOptions broker;
  std::string metrics;  ///< where they are served, as `MetricsServer` reads it; empty for nowhere
};

/**
 * Stores the messages of a fleet in a database, in batches, and reports to the publishers what is stored. While the broker
 * or the server of the database is away it tries again every second. Its functions are for one thread.
 */
class Collector {
 public:
  /**
   * A server of a database that does not answer is tried again by `run`.
   *
   * @param options  has to outlive this object
   * @throw Failure  when the database cannot be used, or metrics cannot be served
   */
  explicit Collector(const CollectorOptions& options);

  /** Returns when a signal asks for the end, with all stored that has come. @throw Failure */
  void run();

  /** What has become of all messages: "5 frames stored, 0 repeated, 0 conflicting; 0 messages refused". */
  std::string summary() const;

 private:
  /** By site and device: what its publisher has to know. */
  using Reports = std::map<std::pair<std::string, std::string>, StoredFrames>;

  /** What became of a batch. */
  struct Stored {
    CollectorFigures figures;
    Reports reports;
  };

  void open();
  void serve();
  void reportAlive();
  void waitBeforeRetry();
  std::vector<std::string> topics() const;
  /** Commits the batch. @throw DatabaseProblem, and the batch stays */
  void store();
  void add(const MessageBatch::Message& message, Stored& result);
  void add(const CollectedFrame& frame, Stored& result);
  void add(const CollectedNote& note, Stored& result);
  void add(const CollectedStatus& status, Stored& result);
  void refuse(const std::string& reason, std::string_view topic);
  void report(Broker& broker);

  const CollectorOptions& options_;
  std::unique_ptr<Collection> collection_;  ///< none while its server does not answer
  ServiceManager manager_;
  MessageBatch batch_;
  Reports reports_;  ///< those that are still to be sent
  std::set<std::string> refusalsReported_;
  ChangedMessage message_;
  CollectorMetrics metrics_;
  Liveness liveness_;
  std::optional<MetricsServer> metricsServer_;  ///< last, because it reports the others
};

}  // namespace tarn::command

#endif
