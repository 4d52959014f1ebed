// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

// The recording reader, compared with reading the same bytes by hand.

#include "fuzz_input.h"
#include "recording/recording_reader.h"

#include <sstream>
#include <vector>

namespace tarn::fuzz {
namespace {

namespace recording = vod::recording;

constexpr std::size_t maximumSize = 1000;  // small, so that inputs reach it

/** What a recording's bytes hold, read by hand. */
struct Expected {
  std::vector<std::string> scenes;
  bool isDamaged = false;
};

/** Takes a varint from the front; false when there is none that is whole and fits 64 bits. */
bool takeVarint(const std::string& bytes, std::size_t& position, std::uint64_t& value) {
  constexpr unsigned longest = 10;
  value = 0;
  for (unsigned i = 0; i < longest && position < bytes.size(); ++i) {
    const auto byte = static_cast<std::uint8_t>(bytes[position++]);
    value |= std::uint64_t{byte & 0x7FU} << (7U * i);
    if ((byte & 0x80U) == 0) {
      return true;
    }
  }
  return false;
}

Expected readByHand(const std::string& bytes) {
  Expected expected;
  std::size_t position = 0;
  while (position < bytes.size()) {
    std::uint64_t length = 0;
    if (!takeVarint(bytes, position, length) || length > maximumSize || length > bytes.size() - position) {
      expected.isDamaged = true;
      break;
    }
    const auto size = static_cast<std::size_t>(length);
    expected.scenes.push_back(bytes.substr(position, size));
    position += size;
  }
  return expected;
}

}  // namespace
}  // namespace tarn::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace tarn::fuzz;
  const std::string bytes = Input(data, size).rest();
  const Expected expected = readByHand(bytes);

  recording::RecordingReader reader(std::make_unique<std::istringstream>(bytes), "input", maximumSize);
  std::vector<std::string> scenes;
  std::int64_t lastOffset = -1;
  recording::NextScene next = reader.next();
  for (; std::holds_alternative<recording::RecordedScene>(next); next = reader.next()) {
    auto& scene = std::get<recording::RecordedScene>(next);
    require(scene.offset > lastOffset, "offsets do not grow");
    lastOffset = scene.offset;
    scenes.push_back(std::move(scene.bytes));
  }
  require(scenes == expected.scenes, "other scenes were read");
  require(std::holds_alternative<recording::Damage>(next) == expected.isDamaged, "damage was not seen or made up");
  require(reader.next().index() == next.index(), "the end is not the end");
  return 0;
}
