// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "base/report.h"
#include "base/text.h"
#include "recordings/recording_summary.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

namespace tarn::command {
namespace {

// Together 80 columns, with two spaces after the first and before the last.
constexpr std::size_t idColumns = 8;
constexpr std::size_t classColumns = 12;
constexpr std::size_t numberColumns = 8;
constexpr std::size_t barColumns = 24;

/** The recording from left to right, with a thick line while the object was seen. */
std::string timeBar(double from, double to, double duration) {
  const double scale = duration > 0 ? static_cast<double>(barColumns) / duration : 0;
  const auto begin = std::min(barColumns - 1, static_cast<std::size_t>(from * scale));
  const auto end = std::clamp(static_cast<std::size_t>(std::ceil(to * scale)), begin + 1, barColumns);
  std::string bar;
  for (std::size_t column = 0; column < barColumns; ++column) {
    bar += column >= begin && column < end ? "━" : "·";
  }
  return bar;
}

std::string objectLine(std::uint32_t id, const ObjectLife& life, const RecordingSummary& summary) {
  return fittedRight(std::to_string(id), idColumns) + "  " + fitted(printable(life.className), classColumns) +
         fittedRight(fixed(life.first, 1), numberColumns) + fittedRight(fixed(life.last, 1), numberColumns) +
         fittedRight(fixed(life.last - life.first, 1), numberColumns) +
         fittedRight(std::to_string(life.frames), numberColumns) + "  " +
         timeBar(life.first, life.last, summary.duration);
}

std::string objectTable(const RecordingSummary& summary) {
  std::vector<std::pair<std::uint32_t, ObjectLife>> objects(summary.objects.begin(), summary.objects.end());
  std::stable_sort(objects.begin(), objects.end(),
                   [](const auto& left, const auto& right) { return left.second.first < right.second.first; });
  std::string table = '\n' + fittedRight("object", idColumns) + "  " + fitted("class", classColumns) +
                      fittedRight("from s", numberColumns) + fittedRight("to s", numberColumns) +
                      fittedRight("for s", numberColumns) + fittedRight("frames", numberColumns) + "  seen\n";
  for (const auto& [id, life] : objects) {
    table += objectLine(id, life, summary) + '\n';
  }
  return table;
}

std::vector<std::string> classLines(const RecordingSummary& summary) {
  const auto objects = summary.objectsByClass();
  std::vector<std::string> lines;
  for (const auto& [name, detections] : summary.detectionsByClass) {
    lines.push_back(nameColumn(name) + counted(detections, "detection") + " of " + counted(objects.at(name), "object"));
  }
  return lines;
}

std::vector<std::string> damageLines(const DamageList& damage) {
  std::vector<std::string> lines;
  for (const auto& each : damage.first()) {
    lines.push_back(printable(vod::recording::toString(each)));
  }
  if (damage.count() > lines.size()) {
    lines.push_back("and " + std::to_string(damage.count() - lines.size()) + " more");
  }
  return lines;
}

}  // namespace

std::string summaryText(const RecordingSummary& summary) {
  const std::string rate = summary.rate() > 0 ? ", " + fixed(summary.rate(), 1) + " per second" : "";
  const std::string restarts = summary.restarts > 0 ? ", time stamps restart " + counted(summary.restarts, "time") : "";
  return labelled("recording", printable(summary.folder)) +
         labelled("duration", fixed(summary.duration, 1) + " s" + restarts) +
         labelled("frames", std::to_string(summary.frames) + rate) +
         labelled("size of scenes", byteSize(summary.bytes)) + labelledList("classes", classLines(summary)) +
         labelled("objects", std::to_string(summary.objects.size())) +
         labelled("events",
                  std::to_string(summary.deleted) + " deleted, " + std::to_string(summary.connected) + " connected") +
         labelledList("damage", damageLines(summary.damage)) + (summary.objects.empty() ? "" : objectTable(summary));
}

Json toJson(const RecordingSummary& summary) {
  Json objects = Json::array();
  for (const auto& [id, life] : summary.objects) {
    objects.push_back({{"objectId", id},
                       {"className", life.className},
                       {"firstSeconds", static_cast<float>(life.first)},
                       {"lastSeconds", static_cast<float>(life.last)},
                       {"firstFrame", life.firstFrame},
                       {"lastFrame", life.lastFrame},
                       {"frames", life.frames}});
  }
  Json damage = Json::array();
  for (const auto& each : summary.damage.first()) {
    damage.push_back({{"file", each.file}, {"offset", each.offset}, {"what", each.what}});
  }
  return {{"recording", summary.folder},
          {"frames", summary.frames},
          {"seconds", static_cast<float>(summary.duration)},
          {"restarts", summary.restarts},
          {"framesPerSecond", static_cast<float>(summary.rate())},
          {"bytes", summary.bytes},
          {"detectionsByClass", summary.detectionsByClass},
          {"events", {{"Delete", summary.deleted}, {"Connect", summary.connected}}},
          {"objects", objects},
          {"damageCount", summary.damage.count()},
          {"damage", damage}};
}

}  // namespace tarn::command
