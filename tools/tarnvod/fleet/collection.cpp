// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "fleet/collection.h"

#include "base/wall_clock.h"
#include "fleet/collection_schema.h"

#include <algorithm>
#include <optional>

namespace tarn::command {
namespace {

/** A million seconds of frames: no camera is so far ahead of what was stored. */
constexpr std::uint64_t farthest = 10'000'000;
/** Origins that are kept in mind; what is forgotten is looked up again. */
constexpr std::size_t mostSources = 10'000;

Database& prepared(Database& database) {
  database.run(collectionSchema);
  return database;
}

std::optional<float> coordinate(const Json& detection, const char* name) {
  const Json& value = detection.at(name);
  return value.is_null() ? std::nullopt : std::make_optional(value.get<float>());
}

std::optional<std::string> textOrNull(const Json& value) {
  return value.is_null() ? std::nullopt : std::make_optional(value.get<std::string>());
}

std::optional<std::uint64_t> numberOrNull(const Json& value) {
  return value.is_null() ? std::nullopt : std::make_optional(value.get<std::uint64_t>());
}

}  // namespace

Collection::Collection(const std::string& file)
    : database_(file, file, Database::Access::Create),
      insertSource_(prepared(database_),
                    "INSERT INTO sources (site, device, camera, start) VALUES (?, ?, ?, ?) ON CONFLICT DO NOTHING"),
      findSource_(database_,
                  "SELECT source, max(coalesce((SELECT max(sequence) FROM frames WHERE frames.source = s.source), 0),"
                  " coalesce((SELECT max(last) FROM dropped WHERE dropped.source = s.source), 0))"
                  " FROM sources AS s WHERE site = ? AND device = ? AND camera = ? AND start = ?"),
      insertFrame_(database_,
                   "INSERT INTO frames (source, sequence, timestamp, arrival, clockSet, stored, checksum)"
                   " VALUES (?, ?, ?, ?, ?, ?, ?) ON CONFLICT DO NOTHING"),
      findFrame_(database_, "SELECT checksum FROM frames WHERE source = ? AND sequence = ?"),
      countRepetition_(database_, "UPDATE sources SET repeated = repeated + 1 WHERE source = ?"),
      countConflict_(database_, "UPDATE sources SET conflicting = conflicting + 1 WHERE source = ?"),
      insertDetection_(database_,
                       "INSERT INTO detections (frame, objectId, className, score, status, coord1, coord2, coord3,"
                       " coord4) VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?)"),
      insertAttribute_(database_, "INSERT INTO attributes (detection, typeName, className, score) VALUES (?, ?, ?, ?)"),
      insertEvent_(database_, "INSERT INTO events (frame, action, objectId, objectIds) VALUES (?, ?, ?, ?)"),
      insertNote_(database_, "INSERT INTO dropped (source, first, last) VALUES (?, ?, ?) ON CONFLICT DO NOTHING"),
      updateNumbered_(database_, "UPDATE sources SET numbered = max(numbered, ?) WHERE source = ?"),
      insertState_(database_,
                   "INSERT INTO states (source, state, reason, since, received) VALUES (?, ?, ?, ?, ?)"
                   " ON CONFLICT DO NOTHING"),
      insertPublisher_(database_,
                       "INSERT INTO publishers (site, device, start, state, received) SELECT ?1, ?2, ?3, ?4, ?5"
                       " WHERE NOT EXISTS (SELECT 1 FROM (SELECT start, state FROM publishers WHERE site = ?1 AND"
                       " device = ?2 ORDER BY rowid DESC LIMIT 1) WHERE start = ?3 AND state = ?4)"),
      replaceStatus_(database_,
                     "INSERT INTO status (site, device, received, message) VALUES (?, ?, ?, ?)"
                     " ON CONFLICT DO UPDATE SET received = excluded.received, message = excluded.message"),
      countRefusal_(database_,
                    "INSERT INTO refused (reason, count, latest, topic) VALUES (?, 1, ?, ?) ON CONFLICT DO UPDATE SET"
                    " count = count + 1, latest = excluded.latest, topic = excluded.topic") {}

void Collection::begin() {
  database_.run("BEGIN IMMEDIATE");
}

void Collection::commit() {
  database_.run("COMMIT");
}

Collection::Source& Collection::sourceOf(const Origin& origin, int camera) {
  if (sources_.size() >= mostSources) {
    sources_.clear();
  }
  const auto [entry, isNew] = sources_.try_emplace({origin.site, origin.device, camera, origin.start});
  if (isNew) {
    insertSource_.run(origin.site, origin.device, camera, origin.start);
    findSource_.start(origin.site, origin.device, camera, origin.start);
    findSource_.next();
    entry->second = {findSource_.number(0), static_cast<std::uint64_t>(findSource_.number(1))};
    findSource_.reset();
  }
  return entry->second;
}

void Collection::checkNumber(const Source& source, std::uint64_t number) const {
  if (source.highest != 0 && number > source.highest + farthest) {
    throw Refusal("a number that cannot be the camera's");
  }
}

Collection::Outcome Collection::add(const CollectedFrame& frame) {
  Source& source = sourceOf(frame.origin, frame.envelope.camera);
  checkNumber(source, frame.envelope.sequence);
  insertFrame_.run(source.row, frame.envelope.sequence, frame.timestamp, frame.envelope.arrival,
                   frame.envelope.clockSet, wallTimeNow().microseconds, frame.checksum);
  if (database_.changes() == 0) {
    return addAgain(source, frame);
  }
  const std::int64_t row = database_.lastRow();
  for (const Json& detection : frame.detections) {
    addDetection(row, detection);
  }
  for (const Json& event : frame.events) {
    insertEvent_.run(row, event.at("action").get<std::string>(), event.at("objectId").get<std::int64_t>(),
                     event.at("objectIds").dump());
  }
  source.highest = std::max(source.highest, frame.envelope.sequence);
  return Outcome::Stored;
}

Collection::Outcome Collection::addAgain(const Source& source, const CollectedFrame& frame) {
  findFrame_.start(source.row, frame.envelope.sequence);
  const bool isSame = findFrame_.next() && findFrame_.number(0) == static_cast<std::int64_t>(frame.checksum);
  findFrame_.reset();
  (isSame ? countRepetition_ : countConflict_).run(source.row);
  return isSame ? Outcome::Repeated : Outcome::Conflicting;
}

void Collection::addDetection(std::int64_t frame, const Json& detection) {
  insertDetection_.run(frame, detection.at("objectId").get<std::uint64_t>(),
                       detection.at("className").get<std::string>(), detection.at("score").get<std::uint64_t>(),
                       detection.at("status").get<std::string>(), coordinate(detection, "coord1"),
                       coordinate(detection, "coord2"), coordinate(detection, "coord3"),
                       coordinate(detection, "coord4"));
  const std::int64_t row = database_.lastRow();
  for (const Json& attribute : detection.at("attributes")) {
    insertAttribute_.run(row, attribute.at("typeName").get<std::string>(), textOrNull(attribute.at("className")),
                         numberOrNull(attribute.at("score")));
  }
}

void Collection::add(const CollectedNote& note) {
  Source& source = sourceOf(note.origin, note.frames.camera);
  checkNumber(source, note.frames.last);
  insertNote_.run(source.row, note.frames.first, note.frames.last);
  source.highest = std::max(source.highest, note.frames.last);
}

void Collection::add(const CollectedStatus& status) {
  // All of it is checked before any of it is stored.
  for (const CollectedCamera& camera : status.cameras) {
    checkNumber(sourceOf(status.origin, camera.camera), camera.numbered);
  }
  const std::int64_t now = wallTimeNow().microseconds;
  insertPublisher_.run(status.origin.site, status.origin.device, status.origin.start, status.state, now);
  for (const CollectedCamera& camera : status.cameras) {
    const Source& source = sourceOf(status.origin, camera.camera);
    updateNumbered_.run(camera.numbered, source.row);
    insertState_.run(source.row, camera.state, camera.reason, camera.since, now);
  }
  if (status.state != "gone") {
    replaceStatus_.run(status.origin.site, status.origin.device, now, status.text);
  }
}

void Collection::countRefusal(const std::string& reason, const std::string& topic) {
  countRefusal_.run(reason, wallTimeNow().microseconds, topic);
}

}  // namespace tarn::command
