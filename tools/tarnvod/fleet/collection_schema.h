// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_COMMAND_COLLECTION_SCHEMA_H
#define TARNVOD_COMMAND_COLLECTION_SCHEMA_H

namespace tarn::command {

/**
 * The tables of a collector's database. Times are in microseconds since 1970-01-01 UTC. A commit has reached the disk
 * when it returns, and can be read while the next one is made.
 */
inline constexpr const char* collectionSchema = R"(
PRAGMA journal_mode = WAL;
PRAGMA synchronous = FULL;
PRAGMA busy_timeout = 10000;
CREATE TABLE IF NOT EXISTS sources (source INTEGER PRIMARY KEY, site TEXT NOT NULL, device TEXT NOT NULL,
  camera INTEGER NOT NULL, start TEXT NOT NULL, numbered INTEGER NOT NULL DEFAULT 0,
  repeated INTEGER NOT NULL DEFAULT 0, conflicting INTEGER NOT NULL DEFAULT 0, UNIQUE (site, device, camera, start));
CREATE TABLE IF NOT EXISTS frames (frame INTEGER PRIMARY KEY, source INTEGER NOT NULL REFERENCES sources,
  sequence INTEGER NOT NULL, timestamp INTEGER NOT NULL, arrival INTEGER NOT NULL, clockSet INTEGER NOT NULL,
  stored INTEGER NOT NULL, checksum INTEGER NOT NULL, UNIQUE (source, sequence));
CREATE INDEX IF NOT EXISTS framesByArrival ON frames (arrival);
CREATE TABLE IF NOT EXISTS detections (detection INTEGER PRIMARY KEY, frame INTEGER NOT NULL REFERENCES frames,
  objectId INTEGER NOT NULL, className TEXT NOT NULL, score INTEGER NOT NULL, status TEXT NOT NULL,
  coord1 REAL, coord2 REAL, coord3 REAL, coord4 REAL);
CREATE INDEX IF NOT EXISTS detectionsByFrame ON detections (frame);
CREATE TABLE IF NOT EXISTS attributes (detection INTEGER NOT NULL REFERENCES detections, typeName TEXT NOT NULL,
  className TEXT, score INTEGER);
CREATE INDEX IF NOT EXISTS attributesByDetection ON attributes (detection);
CREATE TABLE IF NOT EXISTS events (frame INTEGER NOT NULL REFERENCES frames, action TEXT NOT NULL,
  objectId INTEGER NOT NULL, objectIds TEXT NOT NULL);
CREATE INDEX IF NOT EXISTS eventsByFrame ON events (frame);
CREATE TABLE IF NOT EXISTS dropped (source INTEGER NOT NULL REFERENCES sources, first INTEGER NOT NULL,
  last INTEGER NOT NULL, PRIMARY KEY (source, first, last));
CREATE TABLE IF NOT EXISTS states (source INTEGER NOT NULL REFERENCES sources, state TEXT NOT NULL,
  reason TEXT NOT NULL, since INTEGER NOT NULL, received INTEGER NOT NULL, PRIMARY KEY (source, since, state, reason));
CREATE TABLE IF NOT EXISTS publishers (site TEXT NOT NULL, device TEXT NOT NULL, start TEXT NOT NULL,
  state TEXT NOT NULL, received INTEGER NOT NULL);
CREATE TABLE IF NOT EXISTS status (site TEXT NOT NULL, device TEXT NOT NULL, received INTEGER NOT NULL,
  message TEXT NOT NULL, PRIMARY KEY (site, device));
CREATE TABLE IF NOT EXISTS refused (reason TEXT PRIMARY KEY, count INTEGER NOT NULL, latest INTEGER NOT NULL,
  topic TEXT NOT NULL);
)";

}  // namespace tarn::command

#endif
