// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "fleet/collection_schema.h"

namespace tarn::command {
namespace {

constexpr std::string_view placeholder = "$rowNumber";
constexpr std::string_view tables = R"(
CREATE TABLE IF NOT EXISTS sources (source $rowNumber, site TEXT NOT NULL, device TEXT NOT NULL,
  camera BIGINT NOT NULL, start TEXT NOT NULL, numbered BIGINT NOT NULL DEFAULT 0,
  repeated BIGINT NOT NULL DEFAULT 0, conflicting BIGINT NOT NULL DEFAULT 0, UNIQUE (site, device, camera, start));
CREATE TABLE IF NOT EXISTS frames (frame $rowNumber, source BIGINT NOT NULL REFERENCES sources,
  sequence BIGINT NOT NULL, timestamp BIGINT NOT NULL, arrival BIGINT NOT NULL, clockSet BIGINT NOT NULL,
  stored BIGINT NOT NULL, checksum BIGINT NOT NULL, UNIQUE (source, sequence));
CREATE INDEX IF NOT EXISTS framesByArrival ON frames (arrival);
CREATE TABLE IF NOT EXISTS detections (detection $rowNumber, frame BIGINT NOT NULL REFERENCES frames,
  objectId BIGINT NOT NULL, className TEXT NOT NULL, score BIGINT NOT NULL, status TEXT NOT NULL,
  coord1 REAL, coord2 REAL, coord3 REAL, coord4 REAL);
CREATE INDEX IF NOT EXISTS detectionsByFrame ON detections (frame);
CREATE TABLE IF NOT EXISTS attributes (detection BIGINT NOT NULL REFERENCES detections, typeName TEXT NOT NULL,
  className TEXT, score BIGINT);
CREATE INDEX IF NOT EXISTS attributesByDetection ON attributes (detection);
CREATE TABLE IF NOT EXISTS events (frame BIGINT NOT NULL REFERENCES frames, action TEXT NOT NULL,
  objectId BIGINT NOT NULL, objectIds TEXT NOT NULL);
CREATE INDEX IF NOT EXISTS eventsByFrame ON events (frame);
CREATE TABLE IF NOT EXISTS dropped (source BIGINT NOT NULL REFERENCES sources, first BIGINT NOT NULL,
  last BIGINT NOT NULL, PRIMARY KEY (source, first, last));
CREATE TABLE IF NOT EXISTS states (source BIGINT NOT NULL REFERENCES sources, state TEXT NOT NULL,
  reason TEXT NOT NULL, since BIGINT NOT NULL, received BIGINT NOT NULL, PRIMARY KEY (source, since, state, reason));
CREATE TABLE IF NOT EXISTS publishers (publication $rowNumber, site TEXT NOT NULL, device TEXT NOT NULL,
  start TEXT NOT NULL, state TEXT NOT NULL, received BIGINT NOT NULL);
CREATE TABLE IF NOT EXISTS status (site TEXT NOT NULL, device TEXT NOT NULL, received BIGINT NOT NULL,
  message TEXT NOT NULL, PRIMARY KEY (site, device));
CREATE TABLE IF NOT EXISTS refused (reason TEXT PRIMARY KEY, count BIGINT NOT NULL, latest BIGINT NOT NULL,
  topic TEXT NOT NULL);
)";

}  // namespace

std::string collectionSchema(std::string_view rowNumber) {
  std::string schema(tables);
  for (std::size_t at = schema.find(placeholder); at != std::string::npos; at = schema.find(placeholder, at)) {
    schema.replace(at, placeholder.size(), rowNumber);
  }
  return schema;
}

}  // namespace tarn::command
