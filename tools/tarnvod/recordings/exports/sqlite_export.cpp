// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "base/sqlite_database.h"
#include "base/text.h"
#include "recordings/exports/frame_export.h"
#include "recordings/scene_record.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace tarn::command {
namespace {

constexpr const char* schema = R"(
PRAGMA journal_mode = OFF;
PRAGMA synchronous = OFF;
BEGIN;
CREATE TABLE frames (frame INTEGER PRIMARY KEY, timestamp INTEGER NOT NULL, arrival INTEGER, monotonic INTEGER);
CREATE TABLE detections (detection INTEGER PRIMARY KEY, frame INTEGER NOT NULL REFERENCES frames,
  objectId INTEGER NOT NULL, className TEXT NOT NULL, score INTEGER NOT NULL, status TEXT NOT NULL,
  coord1 REAL, coord2 REAL, coord3 REAL, coord4 REAL);
CREATE TABLE attributes (detection INTEGER NOT NULL REFERENCES detections, typeName TEXT NOT NULL, className TEXT,
  score INTEGER);
CREATE TABLE classifications (detection INTEGER NOT NULL REFERENCES detections, className TEXT, score INTEGER);
CREATE TABLE events (frame INTEGER NOT NULL REFERENCES frames, action TEXT NOT NULL, objectId INTEGER NOT NULL,
  objectIds TEXT NOT NULL);
)";

constexpr const char* indices = R"(
CREATE INDEX framesByTimestamp ON frames (timestamp);
CREATE INDEX detectionsByFrame ON detections (frame);
CREATE INDEX detectionsByObject ON detections (className, objectId);
CREATE INDEX attributesByDetection ON attributes (detection);
CREATE INDEX classificationsByDetection ON classifications (detection);
CREATE INDEX eventsByFrame ON events (frame);
COMMIT;
)";

class SqliteExport : public FrameExport {
 public:
  SqliteExport(const std::string& path, const SceneNames& names)
      : names_(names), file_(path), database_(file_.temporaryPath(), path) {
    database_.run(schema);
    frames_.emplace(database_, "INSERT INTO frames VALUES (?, ?, ?, ?)");
    detections_.emplace(database_, "INSERT INTO detections VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?)");
    attributes_.emplace(database_, "INSERT INTO attributes VALUES (?, ?, ?, ?)");
    classifications_.emplace(database_, "INSERT INTO classifications VALUES (?, ?, ?)");
    events_.emplace(database_, "INSERT INTO events VALUES (?, ?, ?, ?)");
  }

  void add(const ScannedScene& scanned) override {
    std::optional<std::int64_t> wallClock;
    std::optional<std::int64_t> monotonic;
    if (scanned.arrival) {
      wallClock = scanned.arrival->wallClock;
      monotonic = scanned.arrival->monotonic;
    }
    frames_->run(scanned.number, scanned.scene.timestamp(), wallClock, monotonic);
    for (const auto& detection : scanned.scene.detections()) {
      add(scanned.number, detection);
    }
    for (const VOD::VodEvent& event : eventsOf(scanned.scene)) {
      events_->run(scanned.number, nameOf(event.action), event.objectId, listOf(event.objectIds));
    }
  }

  void finish() override {
    database_.run(indices);
    file_.commit();
  }

 private:
  void add(std::uint64_t frame, const ::VOD::Detection& detection) {
    ++number_;
    detections_->run(number_, frame, detection.object_id(), names_.className(detection.class_id()), detection.score(),
                     statusName(detection), detection.coord_1(), detection.coord_2(), detection.coord_3(),
                     detection.coord_4());
    for (const auto& attribute : detection.attributes()) {
      add(attribute);
    }
    for (const auto& classification : detection.classifications()) {
      add(classification);
    }
  }

  void add(const ::VOD::Attribute& attribute) {
    std::optional<std::string> value;
    if (attribute.has_class_case() == ::VOD::Attribute::kClass) {
      value = names_.attributeValue(attribute.type(), attribute.class_());
    }
    const bool hasScore = attribute.has_score_case() == ::VOD::Attribute::kScore;
    attributes_->run(number_, names_.attributeName(attribute.type()), value,
                     hasScore ? std::optional(attribute.score()) : std::nullopt);
  }

  void add(const ::VOD::Classification& classification) {
    std::optional<std::string> name;
    if (classification.has_class_case() == ::VOD::Classification::kClass) {
      name = names_.className(classification.class_());
    }
    const bool hasScore = classification.has_score_case() == ::VOD::Classification::kScore;
    classifications_->run(number_, name, hasScore ? std::optional(classification.score()) : std::nullopt);
  }

  /** A JSON array, which the database's own functions read. */
  static std::string listOf(const std::vector<int>& ids) {
    std::string list;
    for (const int id : ids) {
      list += (list.empty() ? "" : ",") + std::to_string(id);
    }
    return '[' + list + ']';
  }

  const SceneNames& names_;
  ReplacedFile file_;
  SqliteDatabase database_;
  std::optional<Statement> frames_;
  std::optional<Statement> detections_;
  std::optional<Statement> attributes_;
  std::optional<Statement> classifications_;
  std::optional<Statement> events_;
  std::int64_t number_ = 0;
};

}  // namespace

std::unique_ptr<FrameExport> makeSqliteExport(const std::string& path, const SceneNames& names) {
  return std::make_unique<SqliteExport>(path, names);
}

}  // namespace tarn::command
