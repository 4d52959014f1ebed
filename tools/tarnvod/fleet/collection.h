// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_COMMAND_COLLECTION_H
#define TARNVOD_COMMAND_COLLECTION_H

#include "base/database.h"
#include "fleet/message_reader.h"

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <tuple>

namespace tarn::command {

/**
 * The database of a collector. A frame is stored once, however often it comes: it is known by site, device, camera, start
 * and sequence number. What is added between `begin` and `commit` is stored as a whole or, when the process ends before,
 * not at all. After a `Failure` the object is of no more use. Not for use by two threads.
 */
class Collection {
 public:
  enum class Outcome {
    Stored,
    Repeated,     ///< it is there already
    Conflicting,  ///< another frame of this number is there, and stays
  };

  /** Opens the database, or makes it: an SQLite file, or the URL of a PostgreSQL database. @throw UsageError; Failure */
  explicit Collection(const std::string& database);

  void begin();
  /** @throw Failure  when the database cannot be written; nothing since `begin` is stored then */
  void commit();

  /** @throw Refusal  when the number is too far from those before it; Failure */
  Outcome add(const CollectedFrame& frame);
  /** @throw Refusal  as above; Failure */
  void add(const CollectedNote& note);
  void add(const CollectedStatus& status);

  /** Counts a message that was refused. */
  void countRefusal(const std::string& reason, const std::string& topic);

 private:
  struct Source {
    std::int64_t row = 0;
    std::uint64_t highest = 0;  ///< number that was stored
  };

  Source& sourceOf(const Origin& origin, int camera);
  void checkNumber(const Source& source, std::uint64_t number) const;
  Outcome addAgain(const Source& source, const CollectedFrame& frame);
  void addDetection(std::int64_t frame, std::int64_t row, const Json& detection);

  const std::unique_ptr<Database> database_;
  Statement insertSource_;
  Statement findSource_;
  Statement insertFrame_;
  Statement findFrame_;
  Statement countRepetition_;
  Statement countConflict_;
  Statement insertDetection_;
  Statement insertAttribute_;
  Statement insertEvent_;
  Statement insertNote_;
  Statement updateNumbered_;
  Statement insertState_;
  Statement insertPublisher_;
  Statement replaceStatus_;
  Statement countRefusal_;
  std::map<std::tuple<std::string, std::string, int, std::string>, Source> sources_;
};

}  // namespace tarn::command

#endif
