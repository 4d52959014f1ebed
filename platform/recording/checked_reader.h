// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef VOD_RECORDING_CHECKED_READER_H
#define VOD_RECORDING_CHECKED_READER_H

#include "recording/recording.h"
#include "recording/recording_reader.h"
#include "recording/scene_index.h"

#include <cstddef>
#include <cstdint>
#include <deque>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace vod::recording {

/** A scene, where it is and when it arrived. */
struct CheckedScene {
  std::string bytes;
  std::size_t part = 0;     ///< which of the recording's parts holds it, counted from 0
  std::int64_t offset = 0;  ///< where its length prefix begins in that part's file
  /** None where the index is absent, ends before this scene or does not agree with it. */
  std::optional<Arrival> arrival;
};

/** Whether these bytes may be a scene. */
using LooksLikeScene = std::function<bool(std::string_view bytes)>;

using CheckedNext = std::variant<CheckedScene, EndOfRecording, Damage>;

/**
 * Reads a recording together with its index: checks every scene against its checksum, reports what does not agree, and
 * goes on behind damage where the index says that a scene begins. Never holds more than one scene. Not for use by two
 * threads at once.
 */
class CheckedReader {
 public:
  /**
   * @param looksLikeScene  finds out where scenes begin again behind damage that the index does not describe; without it,
   *                        a part without an index ends at its first damage
   * @throw RecordingError  when the scenes of the first part cannot be opened
   */
  explicit CheckedReader(const std::filesystem::path& folder, LooksLikeScene looksLikeScene = {});

  /** The next scene or damage. A damage is not the end: there may be more after it. */
  CheckedNext next();

  const std::vector<std::filesystem::path>& parts() const { return parts_; }
  /** The index of the part that is being read. */
  const SceneIndex& index() const { return *index_; }

  /** The file that holds the scenes of a part. */
  std::string fileOf(std::size_t part) const { return parts_.at(part) / scenesFileName; }

 private:
  void open(std::size_t part);
  void openNextPart();
  void openAt(std::int64_t offset);
  void check(RecordedScene&& scene);
  std::optional<IndexEntry> entryFor(const RecordedScene& scene);
  /** Whether the index says that the scene after the expected one begins here. */
  bool isFollowedBy(std::int64_t offset);
  void resumeBehind(const Damage& damage);
  /** Goes on with the first intact scene at or behind an offset; false when the index knows none. */
  bool resumeAt(std::int64_t offset, const std::string& what);
  /** Goes on where scenes follow each other again behind an offset; false when they never do. */
  bool searchBehind(std::int64_t offset, const std::string& what);
  /** Whether the file goes on here with two scenes, or with one at its end, or ends. */
  bool isStartOfScenes(std::int64_t offset);
  /** How many bytes the scene at the start of these has with its length prefix; none when they do not begin with one. */
  std::optional<std::size_t> sizeOfScene(std::string_view bytes) const;
  /** The file from an offset on, as far as a search looks ahead. */
  std::string_view bytesFrom(std::int64_t offset);
  std::optional<std::string> intactScene(const IndexEntry& entry);
  void finishPart();

  const LooksLikeScene looksLikeScene_;
  std::vector<std::filesystem::path> parts_;
  std::size_t part_ = 0;
  std::int64_t fileSize_ = 0;
  std::optional<SceneIndex> index_;
  std::unique_ptr<RecordingReader> reader_;
  /** A second look at the same file, anywhere in it. */
  std::unique_ptr<std::istream> probe_;
  /** What a search reads, and where it begins in the file. */
  std::string window_;
  std::int64_t windowStart_ = 0;
  /** The number of the index's entry that is expected to describe the next scene. */
  std::uint64_t number_ = 0;
  std::uint64_t withoutEntry_ = 0;
  /** Behind the last scene that was read. */
  std::int64_t end_ = 0;
  bool partHasEnded_ = false;
  bool indexIsReported_ = false;
  /** The index knows no intact scene behind a damage; it is not searched again. */
  bool cannotResume_ = false;
  std::deque<Damage> found_;
  /** The scene that is given once what was found before it has been. */
  std::optional<CheckedScene> ready_;
};

}  // namespace vod::recording

#endif
