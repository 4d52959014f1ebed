// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "fleet/collection.h"

#include "base/wall_clock.h"
#include "fleet/collection_database.h"

#include <algorithm>
#include <optional>

namespace tarn::command {
namespace {

/** A million seconds of frames: no camera is so far ahead of what was stored. */
constexpr std::uint64_t farthest = 10'000'000;
/** Origins that are kept in mind; what is forgotten is looked up again. */
constexpr std::size_t mostSources = 10'000;
/** Numbers for the detections of one frame; the largest message has room for a tenth of them. */
constexpr std::int64_t detectionsOfAFrame = 100'000;

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

Collection::Collection(const std::string& database)
    : database_(openCollection(database, Database::Access::Create)),
      insertSource_(*database_,
                    "INSERT INTO sources (site, device, camera, start) VALUES (?1, ?2, ?3, ?4) ON CONFLICT DO NOTHING"),
      findSource_(*database_,
                  "SELECT source, coalesce((SELECT max(sequence) FROM frames WHERE frames.source = s.source), 0),"
                  " coalesce((SELECT max(last) FROM dropped WHERE dropped.source = s.source), 0)"
                  " FROM sources AS s WHERE site = ?1 AND device = ?2 AND camera = ?3 AND start = ?4"),
      insertFrame_(*database_,
                   "INSERT INTO frames (source, sequence, timestamp, arrival, clockSet, stored, checksum)"
                   " VALUES (?1, ?2, ?3, ?4, ?5, ?6, ?7) ON CONFLICT DO NOTHING RETURNING frame"),
      findFrame_(*database_, "SELECT checksum FROM frames WHERE source = ?1 AND sequence = ?2"),
      countRepetition_(*database_, "UPDATE sources SET repeated = repeated + 1 WHERE source = ?1"),
      countConflict_(*database_, "UPDATE sources SET conflicting = conflicting + 1 WHERE source = ?1"),
      insertDetection_(*database_,
                       "INSERT INTO detections (detection, frame, objectId, className, score, status, coord1, coord2,"
                       " coord3, coord4) VALUES (?1, ?2, ?3, ?4, ?5, ?6, ?7, ?8, ?9, ?10)"),
      insertAttribute_(*database_,
                       "INSERT INTO attributes (detection, typeName, className, score) VALUES (?1, ?2, ?3, ?4)"),
      insertEvent_(*database_, "INSERT INTO events (frame, action, objectId, objectIds) VALUES (?1, ?2, ?3, ?4)"),
      insertNote_(*database_, "INSERT INTO dropped (source, first, last) VALUES (?1, ?2, ?3) ON CONFLICT DO NOTHING"),
      updateNumbered_(*database_, "UPDATE sources SET numbered = ?1 WHERE numbered < ?1 AND source = ?2"),
      insertState_(*database_,
                   "INSERT INTO states (source, state, reason, since, received) VALUES (?1, ?2, ?3, ?4, ?5)"
                   " ON CONFLICT DO NOTHING"),
      insertPublisher_(*database_,
                       "INSERT INTO publishers (site, device, start, state, received)"
                       " SELECT CAST(?1 AS TEXT), CAST(?2 AS TEXT), CAST(?3 AS TEXT), CAST(?4 AS TEXT),"
                       " CAST(?5 AS BIGINT) WHERE NOT EXISTS (SELECT 1 FROM (SELECT start, state FROM publishers"
                       " WHERE site = ?1 AND device = ?2 ORDER BY publication DESC LIMIT 1) AS latest"
                       " WHERE start = ?3 AND state = ?4)"),
      replaceStatus_(*database_,
                     "INSERT INTO status (site, device, received, message) VALUES (?1, ?2, ?3, ?4)"
                     " ON CONFLICT (site, device) DO UPDATE SET received = excluded.received,"
                     " message = excluded.message"),
      countRefusal_(*database_,
                    "INSERT INTO refused (reason, count, latest, topic) VALUES (?1, 1, ?2, ?3) ON CONFLICT (reason)"
                    " DO UPDATE SET count = refused.count + 1, latest = excluded.latest, topic = excluded.topic") {}

void Collection::begin() {
  database_->begin();
}

void Collection::commit() {
  database_->commit();
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
    const std::int64_t highest = std::max(findSource_.number(1), findSource_.number(2));
    entry->second = {findSource_.number(0), static_cast<std::uint64_t>(highest)};
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
  insertFrame_.start(source.row, frame.envelope.sequence, frame.timestamp, frame.envelope.arrival,
                     static_cast<int>(frame.envelope.clockSet), wallTimeNow().microseconds, frame.checksum);
  if (!insertFrame_.next()) {
    return addAgain(source, frame);
  }
  const std::int64_t row = insertFrame_.number(0);
  insertFrame_.reset();
  std::int64_t detectionRow = row * detectionsOfAFrame;
  for (const Json& detection : frame.detections) {
    addDetection(row, detectionRow++, detection);
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

void Collection::addDetection(std::int64_t frame, std::int64_t row, const Json& detection) {
  insertDetection_.run(row, frame, detection.at("objectId").get<std::uint64_t>(),
                       detection.at("className").get<std::string>(), detection.at("score").get<std::uint64_t>(),
                       detection.at("status").get<std::string>(), coordinate(detection, "coord1"),
                       coordinate(detection, "coord2"), coordinate(detection, "coord3"),
                       coordinate(detection, "coord4"));
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
