// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

/**
 * @file
 * The index of a recording's scenes, `scenes.idx`: a header and, for each scene, an entry of the same size. An entry says
 * when the scene arrived and where it is; its checksum covers both the entry and the scene. All numbers are
 * little-endian.
 *
 *     header  0  8 bytes  "TVODIDX1"
 *             8  16       the boot during which the monotonic times were taken; zeros when they are of several boots
 *            24  4        zeros
 *            28  u32      CRC-32 of the header's first 28 bytes
 *     entry   0  u64      where the scene's length prefix begins in scenes.pb
 *             8  i64      arrival by the wall clock, microseconds since 1970-01-01 UTC
 *            16  i64      arrival by the monotonic clock, microseconds since an unspecified start
 *            24  u32      length of the scene, without its length prefix
 *            28  u32      CRC-32, as in zlib, of the entry's first 28 bytes followed by the scene
 */

#ifndef VOD_RECORDING_SCENE_INDEX_H
#define VOD_RECORDING_SCENE_INDEX_H

#include "recording/recording.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vod::recording {

inline constexpr const char* indexFileName = "scenes.idx";

/** Of the header and of each entry, in bytes. */
inline constexpr std::size_t indexEntrySize = 32;

/** When a scene arrived, in microseconds. */
struct Arrival {
  std::int64_t wallClock = 0;  ///< since 1970-01-01 UTC; jumps when the clock is set
  std::int64_t monotonic = 0;  ///< since an unspecified start; comparable within one boot of the machine
};

bool operator==(const Arrival& left, const Arrival& right);

/** The time by both clocks. */
Arrival arrivalNow();

/** Identifies a boot of the machine; zeros when it is not known. */
using BootId = std::array<char, 16>;

/** The machine's present boot. */
BootId currentBoot();

/** What an entry of the index says. */
struct IndexEntry {
  std::uint64_t offset = 0;
  Arrival arrival;
  std::uint32_t length = 0;
  std::uint32_t checksum = 0;
};

/** An entry for a scene, with its checksum. */
IndexEntry indexEntryFor(std::uint64_t offset, const Arrival& arrival, std::string_view scene);

/** Whether the checksum is that of the entry and this scene. */
bool matches(const IndexEntry& entry, std::string_view scene);

std::string indexHeader(const BootId& boot);
std::string encoded(const IndexEntry& entry);

/**
 * Reads the index of a plain recording. An entry is found in constant time. Holds a block of entries, whatever the
 * length of the recording. Not for use by two threads at once.
 */
class SceneIndex {
 public:
  /** An index that is absent, as in recordings of earlier versions, is empty; so is one that cannot be used. */
  explicit SceneIndex(const std::filesystem::path& folder);
  ~SceneIndex();
  SceneIndex(SceneIndex&& other) noexcept;
  SceneIndex& operator=(SceneIndex&&) = delete;
  SceneIndex(const SceneIndex&) = delete;
  SceneIndex& operator=(const SceneIndex&) = delete;

  bool exists() const { return file_ >= 0; }
  /** The number of entries that are complete. */
  std::uint64_t size() const { return size_; }
  const BootId& boot() const { return boot_; }
  /** What is wrong with the file itself; of its entries, only that the last one is cut off. */
  const std::optional<Damage>& damage() const { return damage_; }

  /** The entry of a scene, counted from 0; none behind the last entry or where the file cannot be read. */
  std::optional<IndexEntry> at(std::uint64_t number);

  /** The number of the first entry whose scene begins at this offset or behind it, found by bisection. */
  std::uint64_t firstFrom(std::uint64_t offset);

 private:
  void open();
  bool readBlock(std::uint64_t number);

  std::string name_;
  int file_ = -1;
  std::uint64_t size_ = 0;
  BootId boot_{};
  std::optional<Damage> damage_;
  std::uint64_t blockStart_ = 0;
  std::vector<char> block_;
};

}  // namespace vod::recording

#endif
