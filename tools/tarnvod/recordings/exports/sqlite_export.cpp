// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "base/errors.h"
#include "base/text.h"
#include "recordings/exports/frame_export.h"
#include "recordings/scene_record.h"

#include <sqlite3.h>

#include <optional>
#include <type_traits>

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

/** One connection to a database. Failures name the file as the user knows it. */
class Database {
 public:
  Database(const std::string& file, std::string name) : name_(std::move(name)) {
    check(sqlite3_open_v2(file.c_str(), &handle_, SQLITE_OPEN_READWRITE, nullptr));
  }
  ~Database() { sqlite3_close(handle_); }
  Database(const Database&) = delete;
  Database& operator=(const Database&) = delete;

  void run(const char* statements) { check(sqlite3_exec(handle_, statements, nullptr, nullptr, nullptr)); }

  void check(int result) const {
    if (result != SQLITE_OK && result != SQLITE_DONE) {
      throw Failure(name_ + ": " + (handle_ != nullptr ? sqlite3_errmsg(handle_) : sqlite3_errstr(result)));
    }
  }

  sqlite3* handle() const { return handle_; }

 private:
  const std::string name_;
  sqlite3* handle_ = nullptr;
};

/** A prepared statement that is run with one row of values after the other. */
class Insertion {
 public:
  Insertion(const Database& database, const char* statement) : database_(database) {
    database.check(sqlite3_prepare_v2(database.handle(), statement, -1, &statement_, nullptr));
  }
  ~Insertion() { sqlite3_finalize(statement_); }
  Insertion(const Insertion&) = delete;
  Insertion& operator=(const Insertion&) = delete;

  template <typename... Values>
  void add(const Values&... values) {
    int position = 0;
    (database_.check(bind(++position, values)), ...);
    database_.check(sqlite3_step(statement_));
    database_.check(sqlite3_reset(statement_));
  }

 private:
  template <typename Number>
  std::enable_if_t<std::is_integral_v<Number>, int> bind(int position, Number number) {
    return sqlite3_bind_int64(statement_, position, static_cast<sqlite3_int64>(number));
  }
  int bind(int position, float number) { return sqlite3_bind_double(statement_, position, number); }
  int bind(int position, const std::string& text) {
    return sqlite3_bind_text(statement_, position, text.data(), static_cast<int>(text.size()), SQLITE_TRANSIENT);
  }
  template <typename Value>
  int bind(int position, const std::optional<Value>& value) {
    return value ? bind(position, *value) : sqlite3_bind_null(statement_, position);
  }

  const Database& database_;
  sqlite3_stmt* statement_ = nullptr;
};

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
    const VOD::DetectionData frame = recordOf(scanned.scene, names_);
    std::optional<std::int64_t> wallClock;
    std::optional<std::int64_t> monotonic;
    if (scanned.arrival) {
      wallClock = scanned.arrival->wallClock;
      monotonic = scanned.arrival->monotonic;
    }
    frames_->add(scanned.number, frame.timestamp, wallClock, monotonic);
    for (const VOD::Data& detection : frame.detections) {
      add(scanned.number, detection);
    }
    for (const VOD::VodEvent& event : frame.events) {
      events_->add(scanned.number, nameOf(event.action), event.objectId, listOf(event.objectIds));
    }
  }

  void finish() override {
    database_.run(indices);
    file_.commit();
  }

 private:
  void add(std::uint64_t frame, const VOD::Data& detection) {
    ++number_;
    detections_->add(number_, frame, detection.objectId, detection.className, detection.score, nameOf(detection.status),
                     detection.coord1, detection.coord2, detection.coord3, detection.coord4);
    for (const VOD::Attribute& attribute : detection.attributes) {
      attributes_->add(number_, attribute.typeName, attribute.className, attribute.score);
    }
    for (const VOD::Classification& classification : detection.classifications) {
      classifications_->add(number_, classification.className, classification.score);
    }
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
  Database database_;
  std::optional<Insertion> frames_;
  std::optional<Insertion> detections_;
  std::optional<Insertion> attributes_;
  std::optional<Insertion> classifications_;
  std::optional<Insertion> events_;
  std::int64_t number_ = 0;
};

}  // namespace

std::unique_ptr<FrameExport> makeSqliteExport(const std::string& path, const SceneNames& names) {
  return std::make_unique<SqliteExport>(path, names);
}

}  // namespace tarn::command
