// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "metrics/metrics_server.h"

#include "base/clock.h"
#include "base/output.h"
#include "metrics/metrics_text.h"

#include <CLI/CLI.hpp>

#include <charconv>
#include <memory>
#include <string_view>
#include <utility>

namespace tarn::command {
namespace {

constexpr const char* loopback = "127.0.0.1";
constexpr int greatestPort = 65535;

std::optional<int> portIn(std::string_view text) {
  int port = 0;
  const char* const end = text.data() + text.size();
  const auto [last, error] = std::from_chars(text.data(), end, port);
  const bool isPort = error == std::errc{} && last == end && port >= 0 && port <= greatestPort;
  return isPort ? std::make_optional(port) : std::nullopt;
}

/** Without the brackets of an address of IP version 6; empty for what is not a host. */
std::string hostIn(const std::string& text) {
  const bool isBracketed = text.size() > 2 && text.front() == '[' && text.back() == ']';
  const bool isAmbiguous = !isBracketed && text.find_first_of(":[]") != std::string::npos;
  return isAmbiguous ? "" : isBracketed ? text.substr(1, text.size() - 2) : text;
}

}  // namespace

void addMetrics(HttpSite& site, MakeMetrics makeMetrics, const Liveness& liveness) {
  site.add("/metrics", MetricsText::mediaType, [make = std::move(makeMetrics)](const HttpSite::Parameters&) {
    return std::make_shared<const std::string>(make());
  });
  site.add("/healthz", "text/plain; charset=utf-8", [&liveness](const HttpSite::Parameters&) {
    if (liveness.isStalled(Clock::now())) {
      throw Unavailable("stalled");
    }
    return std::make_shared<const std::string>("ok\n");
  });
}

std::optional<ServerAddress> parseServerAddress(const std::string& text) {
  const std::size_t colon = text.rfind(':');
  const auto port = portIn(std::string_view(text).substr(colon == std::string::npos ? 0 : colon + 1));
  const std::string host = colon == std::string::npos ? loopback : hostIn(text.substr(0, colon));
  return port && !host.empty() ? std::make_optional(ServerAddress{host, *port}) : std::nullopt;
}

void addMetricsOption(CLI::App& command, std::string& address) {
  const auto check = [](const std::string& text) {
    return parseServerAddress(text) ? std::string() : "'" + text + "' is not a port or ADDRESS:PORT";
  };
  command
      .add_option(
          "--metrics", address,
          "Serve /metrics for Prometheus and /healthz at this port of 127.0.0.1, or at ADDRESS:PORT; port 0 for "
          "any that is free")
      ->type_name("[ADDRESS:]PORT")
      ->check(CLI::Validator(check, ""));
}

MetricsServer::MetricsServer(const std::string& address, MakeMetrics makeMetrics, const Liveness& liveness)
    : server_(parseServerAddress(address).value().host, parseServerAddress(address).value().port) {
  addMetrics(server_.site(), std::move(makeMetrics), liveness);
  server_.start();
  printMessage("tarnvod: metrics at " + server_.site().url() + "metrics");
}

}  // namespace tarn::command
