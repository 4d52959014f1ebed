// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "recording/scene_index.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <zlib.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <ctime>
#include <fstream>
#include <system_error>
#include <utility>

namespace vod::recording {
namespace {

constexpr std::string_view magic = "TVODIDX1";
constexpr std::size_t bootPosition = 8;
constexpr std::size_t checkedBytes = 28;
constexpr std::size_t entriesInBlock = 128;

template <typename Number>
void put(char*& bytes, Number number) {
  for (std::size_t byte = 0; byte < sizeof(Number); ++byte) {
    *bytes++ = static_cast<char>(static_cast<std::uint64_t>(number) >> (8 * byte));
  }
}

template <typename Number>
Number take(const char*& bytes) {
  std::uint64_t number = 0;
  for (std::size_t byte = 0; byte < sizeof(Number); ++byte) {
    number |= std::uint64_t{static_cast<unsigned char>(*bytes++)} << (8 * byte);
  }
  return static_cast<Number>(number);
}

/** The bytes of an entry; its checksum covers all before itself. */
using EncodedEntry = std::array<char, indexEntrySize>;

EncodedEntry encode(const IndexEntry& entry) {
  EncodedEntry bytes{};
  char* end = bytes.data();
  put(end, entry.offset);
  put(end, entry.arrival.wallClock);
  put(end, entry.arrival.monotonic);
  put(end, entry.length);
  put(end, entry.checksum);
  return bytes;
}

IndexEntry decoded(const char* bytes) {
  IndexEntry entry;
  entry.offset = take<std::uint64_t>(bytes);
  entry.arrival.wallClock = take<std::int64_t>(bytes);
  entry.arrival.monotonic = take<std::int64_t>(bytes);
  entry.length = take<std::uint32_t>(bytes);
  entry.checksum = take<std::uint32_t>(bytes);
  return entry;
}

std::uint32_t addToChecksum(std::uint32_t checksum, std::string_view bytes) {
  // zlib's type for bytes.
  const auto* data = reinterpret_cast<const Bytef*>(bytes.data());
  return static_cast<std::uint32_t>(crc32(checksum, data, static_cast<uInt>(bytes.size())));
}

std::uint32_t checksumOf(const IndexEntry& entry, std::string_view scene) {
  const EncodedEntry bytes = encode(entry);
  return addToChecksum(addToChecksum(0, {bytes.data(), checkedBytes}), scene);
}

std::int64_t microseconds(clockid_t clock) {
  timespec now{};
  ::clock_gettime(clock, &now);
  return std::int64_t{now.tv_sec} * 1'000'000 + now.tv_nsec / 1000;
}

/** Reads until the buffer is full; returns how much there was, or less than 0. */
ssize_t readFully(int file, char* buffer, std::size_t size, std::uint64_t offset) {
  std::size_t done = 0;
  while (done < size) {
    const ssize_t count = ::pread(file, buffer + done, size - done, static_cast<off_t>(offset + done));
    if (count < 0 && errno != EINTR) {
      return -1;
    }
    if (count == 0) {
      break;
    }
    done += static_cast<std::size_t>(std::max<ssize_t>(count, 0));
  }
  return static_cast<ssize_t>(done);
}

int digitOf(char letter) {
  if (letter >= '0' && letter <= '9') {
    return letter - '0';
  }
  return letter >= 'a' && letter <= 'f' ? letter - 'a' + 10 : -1;
}

}  // namespace

bool operator==(const Arrival& left, const Arrival& right) {
  return left.wallClock == right.wallClock && left.monotonic == right.monotonic;
}

Arrival arrivalNow() {
  return {microseconds(CLOCK_REALTIME), microseconds(CLOCK_MONOTONIC)};
}

BootId currentBoot() {
  // Written as a UUID: 32 hexadecimal digits and hyphens.
  std::string text;
  std::ifstream("/proc/sys/kernel/random/boot_id") >> text;
  text.erase(std::remove(text.begin(), text.end(), '-'), text.end());
  BootId boot{};
  for (std::size_t byte = 0; 2 * byte + 1 < text.size() && byte < boot.size(); ++byte) {
    boot.at(byte) = static_cast<char>(digitOf(text[2 * byte]) * 16 + digitOf(text[2 * byte + 1]));
  }
  return boot;
}

IndexEntry indexEntryFor(std::uint64_t offset, const Arrival& arrival, std::string_view scene) {
  IndexEntry entry{offset, arrival, static_cast<std::uint32_t>(scene.size()), 0};
  entry.checksum = checksumOf(entry, scene);
  return entry;
}

bool matches(const IndexEntry& entry, std::string_view scene) {
  return entry.length == scene.size() && entry.checksum == checksumOf(entry, scene);
}

std::string indexHeader(const BootId& boot) {
  std::string header(magic);
  header.append(boot.data(), boot.size());
  header.resize(indexEntrySize);
  char* end = header.data() + checkedBytes;
  put(end, addToChecksum(0, {header.data(), checkedBytes}));
  return header;
}

std::string encoded(const IndexEntry& entry) {
  const EncodedEntry bytes = encode(entry);
  return {bytes.data(), bytes.size()};
}

SceneIndex::SceneIndex(const std::filesystem::path& folder)
    : name_(folder / indexFileName),
      // Without O_NONBLOCK, a pipe in the place of the file would wait for a writer.
      file_(::open(name_.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK)) {
  if (file_ >= 0) {
    open();
  } else if (errno != ENOENT) {
    damage_ = Damage{name_, 0, std::generic_category().message(errno)};
  }
}

SceneIndex::~SceneIndex() {
  if (file_ >= 0) {
    ::close(file_);
  }
}

SceneIndex::SceneIndex(SceneIndex&& other) noexcept
    : name_(std::move(other.name_)),
      file_(std::exchange(other.file_, -1)),
      size_(other.size_),
      boot_(other.boot_),
      damage_(std::move(other.damage_)),
      blockStart_(other.blockStart_),
      block_(std::move(other.block_)) {}

void SceneIndex::open() {
  struct stat status {};
  if (::fstat(file_, &status) != 0 || !S_ISREG(status.st_mode)) {
    damage_ = Damage{name_, 0, "not a regular file"};
    return;
  }
  const auto bytes = static_cast<std::uint64_t>(status.st_size);
  std::array<char, indexEntrySize> header{};
  const ssize_t count = readFully(file_, header.data(), header.size(), 0);
  if (count != static_cast<ssize_t>(header.size())) {
    damage_ = Damage{name_, 0, "the header is cut off after " + std::to_string(std::max<ssize_t>(count, 0)) + " bytes"};
    return;
  }
  // Entries carry checksums of their own: they are of use under a damaged header too.
  size_ = bytes / indexEntrySize - 1;
  BootId boot{};
  std::copy_n(header.begin() + bootPosition, boot.size(), boot.begin());
  if (indexHeader(boot) != std::string_view(header.data(), header.size())) {
    damage_ = Damage{name_, 0, "does not begin like an index of scenes"};
    return;
  }
  boot_ = boot;
  if (const std::uint64_t rest = bytes % indexEntrySize) {
    damage_ = Damage{name_, static_cast<std::int64_t>(bytes - rest),
                     "an entry is cut off after " + std::to_string(rest) + " bytes"};
  }
}

bool SceneIndex::readBlock(std::uint64_t number) {
  block_.resize(entriesInBlock * indexEntrySize);
  blockStart_ = number / entriesInBlock * entriesInBlock;
  const ssize_t count = readFully(file_, block_.data(), block_.size(), (blockStart_ + 1) * indexEntrySize);
  block_.resize(static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
  return (number - blockStart_ + 1) * indexEntrySize <= block_.size();
}

std::optional<IndexEntry> SceneIndex::at(std::uint64_t number) {
  if (number >= size_) {
    return std::nullopt;
  }
  const bool isHeld = number >= blockStart_ && (number - blockStart_ + 1) * indexEntrySize <= block_.size();
  if (!isHeld && !readBlock(number)) {
    return std::nullopt;
  }
  return decoded(block_.data() + (number - blockStart_) * indexEntrySize);
}

std::uint64_t SceneIndex::firstFrom(std::uint64_t offset) {
  std::uint64_t first = 0;
  std::uint64_t last = size_;
  while (first < last) {
    const std::uint64_t middle = first + (last - first) / 2;
    const auto entry = at(middle);
    if (entry && entry->offset < offset) {
      first = middle + 1;
    } else {
      last = middle;
    }
  }
  return first;
}

}  // namespace vod::recording
