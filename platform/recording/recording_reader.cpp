// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "recording/recording_reader.h"

#include "recording/segments.h"

#include <fstream>
#include <sstream>
#include <utility>

namespace vod::recording {

using google::protobuf::io::CodedInputStream;

std::unique_ptr<std::istream> openScenes(const std::filesystem::path& folder) {
  return std::make_unique<std::ifstream>(openFile(folder / scenesFileName));
}

RecordingReader::RecordingReader(const std::filesystem::path& folder) : parts_(partsOf(folder)) {
  const std::filesystem::path file = parts_.front() / scenesFileName;
  try {
    read(openScenes(parts_.front()), file);
  } catch (const RecordingError&) {
    if (parts_.size() == 1) {
      throw;
    }
    unopened_ = Damage{file, 0, "cannot be opened"};
    read(std::make_unique<std::istringstream>(), file);
  }
}

RecordingReader::RecordingReader(std::unique_ptr<std::istream> source, std::string name, std::size_t maximumSize,
                                 std::int64_t start)
    : maximumSize_(maximumSize), start_(start) {
  read(std::move(source), std::move(name));
}

void RecordingReader::read(std::unique_ptr<std::istream> source, std::string name) {
  stream_.reset();
  source_ = std::move(source);
  name_ = std::move(name);
  stream_ = std::make_unique<google::protobuf::io::IstreamInputStream>(source_.get());
}

NextScene RecordingReader::next() {
  if (last_) {
    return *last_;
  }
  NextScene scene = readNext();
  while (std::holds_alternative<EndOfRecording>(scene) && openNextPart()) {
    scene = readNext();
  }
  const bool isFinal =
      std::holds_alternative<EndOfRecording>(scene) || (std::holds_alternative<Damage>(scene) && !openNextPart());
  if (isFinal) {
    last_ = scene;
  }
  return scene;
}

bool RecordingReader::openNextPart() {
  if (part_ + 1 >= parts_.size()) {
    return false;
  }
  const std::filesystem::path file = parts_[++part_] / scenesFileName;
  try {
    read(openScenes(parts_[part_]), file);
  } catch (const RecordingError&) {
    unopened_ = Damage{file, 0, "cannot be opened"};
    read(std::make_unique<std::istringstream>(), file);
  }
  return true;
}

NextScene RecordingReader::readNext() {
  if (unopened_) {
    return *std::exchange(unopened_, std::nullopt);
  }
  offset_ = start_ + stream_->ByteCount();
  // A coded stream counts no further than 2 GB: each message is read with its own, which returns the bytes it did not
  // use.
  CodedInputStream input(stream_.get());
  const void* data = nullptr;
  int size = 0;
  if (!input.GetDirectBufferPointer(&data, &size)) {
    return endOrReadError();
  }
  std::uint32_t length = 0;
  if (auto damage = readLength(input, length)) {
    return *std::move(damage);
  }
  RecordedScene scene;
  scene.offset = offset_;
  scene.part = part_;
  // Grows with the bytes that are present, whatever the prefix says.
  if (!input.ReadString(&scene.bytes, static_cast<int>(length))) {
    return damageHere("a message of " + std::to_string(length) + " bytes is cut off after " +
                      std::to_string(scene.bytes.size()));
  }
  return scene;
}

std::optional<Damage> RecordingReader::readLength(CodedInputStream& input, std::uint32_t& length) const {
  std::uint64_t prefix = 0;
  if (!input.ReadVarint64(&prefix)) {
    char following = 0;
    const bool tooLong = input.ReadRaw(&following, 1);
    return damageHere(tooLong ? "the length of a message is not a valid varint"
                              : "the file ends within the length of a message");
  }
  if (prefix > maximumSize_) {
    return damageHere("a message of " + std::to_string(prefix) + " bytes is longer than the " +
                      std::to_string(maximumSize_) + " bytes allowed");
  }
  length = static_cast<std::uint32_t>(prefix);
  return std::nullopt;
}

NextScene RecordingReader::endOrReadError() const {
  if (source_->bad()) {
    return damageHere("cannot be read");
  }
  return EndOfRecording();
}

Damage RecordingReader::damageHere(std::string what) const {
  return {name_, offset_, std::move(what)};
}

}  // namespace vod::recording
