// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_COMMAND_METRICS_SERVER_H
#define TARNVOD_COMMAND_METRICS_SERVER_H

#include "http/http_server.h"
#include "metrics/liveness.h"

#include <functional>
#include <optional>
#include <string>

namespace CLI {
class App;
}

namespace tarn::command {

/** Makes the text for Prometheus; called on the server's thread. */
using MakeMetrics = std::function<std::string()>;

/**
 * Has a site answer "/metrics" and, while the loop runs, "/healthz" with 200; with 503 when it is stalled.
 *
 * @param liveness  has to exist as long as the site
 */
void addMetrics(HttpSite& site, MakeMetrics makeMetrics, const Liveness& liveness);

/** Where a server listens. */
struct ServerAddress {
  std::string host;
  int port = 0;  ///< 0 for any that is free
};

/** Reads "PORT", "HOST:PORT" or "[IPV6]:PORT"; without a host it is 127.0.0.1. None for other texts. */
std::optional<ServerAddress> parseServerAddress(const std::string& text);

/** Adds the option `--metrics`. */
void addMetricsOption(CLI::App& command, std::string& address);

/** Serves metrics and health at an address of their own, as long as this object exists. */
class MetricsServer {
 public:
  /** Prints where the metrics are. @throw Failure when the address cannot be used */
  MetricsServer(const std::string& address, MakeMetrics makeMetrics, const Liveness& liveness);

 private:
  HttpServer server_;
};

}  // namespace tarn::command

#endif
