// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_COMMAND_METRICS_TEXT_H
#define TARNVOD_COMMAND_METRICS_TEXT_H

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace tarn::command {

/** Builds what Prometheus reads: its text format, version 0.0.4. Not thread-safe. */
class MetricsText {
 public:
  /** Names and values. */
  using Labels = std::vector<std::pair<std::string_view, std::string>>;

  static constexpr const char* mediaType = "text/plain; version=0.0.4; charset=utf-8";

  /** Begins a metric that only grows, whose name ends in "_total". Its samples follow. */
  void beginCounter(std::string_view name, std::string_view help) { begin(name, help, "counter"); }
  void beginGauge(std::string_view name, std::string_view help) { begin(name, help, "gauge"); }
  void beginHistogram(std::string_view name, std::string_view help) { begin(name, help, "histogram"); }

  /** Adds a sample to the metric that was begun last. @param suffix  of a histogram's samples: "_sum" */
  void add(std::uint64_t value, const Labels& labels = {}, std::string_view suffix = "");
  void add(double value, const Labels& labels = {}, std::string_view suffix = "");

  /** A counter, or a gauge, with one sample. */
  void counter(std::string_view name, std::string_view help, std::uint64_t value);
  void gauge(std::string_view name, std::string_view help, std::uint64_t value);

  const std::string& text() const { return text_; }

 private:
  void begin(std::string_view name, std::string_view help, std::string_view type);
  void addLine(std::string_view value, const Labels& labels, std::string_view suffix);

  std::string name_;
  std::string text_;
};

/** The shortest decimal number that reads back as the same value. */
std::string decimalText(double value);

/** Adds which version of the command runs. */
void addBuildInfo(MetricsText& text);

}  // namespace tarn::command

#endif
