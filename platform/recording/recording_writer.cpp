// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "recording/recording_writer.h"

#include "recording/recording.h"

#include <fcntl.h>
#include <google/protobuf/io/coded_stream.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <system_error>

namespace vod::recording {

using google::protobuf::io::CodedOutputStream;

namespace {

[[noreturn]] void fail(const std::filesystem::path& file, int error) {
  throw RecordingError(file.string() + ": " + std::generic_category().message(error));
}

int createFile(const std::filesystem::path& file) {
  constexpr mode_t permissions = 0666;
  const int descriptor = ::open(file.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_APPEND | O_CLOEXEC, permissions);
  if (descriptor < 0) {
    fail(file, errno);
  }
  return descriptor;
}

/** Returns 0 or the error number. */
int writeAll(int descriptor, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t written = ::write(descriptor, bytes.data(), bytes.size());
    if (written < 0 && errno != EINTR) {
      return errno;
    }
    bytes.remove_prefix(written < 0 ? 0 : static_cast<std::size_t>(written));
  }
  return 0;
}

void checkSize(const std::filesystem::path& file, std::string_view message) {
  if (message.size() > maximumMessageSize) {
    throw RecordingError(file.string() + ": a message of " + std::to_string(message.size()) +
                         " bytes is longer than the " + std::to_string(maximumMessageSize) + " bytes allowed");
  }
}

void writeDetectorInformation(const std::filesystem::path& file, std::string_view bytes) {
  checkSize(file, bytes);
  const int descriptor = createFile(file);
  const int writeError = writeAll(descriptor, bytes);
  const int closeError = ::close(descriptor) == 0 ? 0 : errno;
  if (writeError != 0 || closeError != 0) {
    // A part of it would be taken for a recording that is there already.
    ::unlink(file.c_str());
    fail(file, writeError != 0 ? writeError : closeError);
  }
}

std::string delimited(std::string_view message) {
  std::array<std::uint8_t, 5> prefix{};
  const std::uint8_t* const end =
      CodedOutputStream::WriteVarint32ToArray(static_cast<std::uint32_t>(message.size()), prefix.data());
  std::string bytes(static_cast<const std::uint8_t*>(prefix.data()), end);
  return bytes.append(message);
}

}  // namespace

void RecordingWriter::File::create(const std::filesystem::path& name) {
  path = name;
  descriptor = createFile(name);
}

int RecordingWriter::File::append(std::string_view bytes) {
  const int error = writeAll(descriptor, bytes);
  size += error == 0 ? static_cast<std::int64_t>(bytes.size()) : 0;
  return error;
}

int RecordingWriter::File::cutBack() const {
  return descriptor < 0 || ::ftruncate(descriptor, size) == 0 ? 0 : errno;
}

// NOLINTNEXTLINE(readability-make-member-function-const): what it writes to is not the same afterwards
void RecordingWriter::File::close() {
  if (descriptor >= 0) {
    ::close(descriptor);
  }
}

RecordingWriter::RecordingWriter(const std::filesystem::path& folder, std::string_view detectorInformation,
                                 const std::optional<BootId>& boot)
    : informationSize_(detectorInformation.size()) {
  std::error_code error;
  std::filesystem::create_directories(folder, error);
  if (error) {
    throw RecordingError(folder.string() + ": " + error.message());
  }
  writeDetectorInformation(folder / detectorInformationFileName, detectorInformation);
  try {
    if (boot) {
      index_.create(folder / indexFileName);
      if (const int failed = index_.append(indexHeader(*boot))) {
        fail(index_.path, failed);
      }
    }
    scenes_.create(folder / scenesFileName);
  } catch (...) {
    // What has been made would be taken for a recording that is there already.
    if (index_.descriptor >= 0) {
      index_.close();
      ::unlink(index_.path.c_str());
    }
    ::unlink((folder / detectorInformationFileName).c_str());
    throw;
  }
}

RecordingWriter::~RecordingWriter() {
  scenes_.close();
  index_.close();
}

void RecordingWriter::append(std::string_view scene, const Arrival& arrival) {
  checkSize(scenes_.path, scene);
  const File before = scenes_;
  if (const int error = scenes_.append(delimited(scene))) {
    undoAndFail(scenes_, error);
  }
  if (index_.descriptor < 0) {
    return;
  }
  const IndexEntry entry = indexEntryFor(static_cast<std::uint64_t>(before.size), arrival, scene);
  if (const int error = index_.append(encoded(entry))) {
    scenes_.size = before.size;
    undoAndFail(index_, error);
  }
}

void RecordingWriter::undoAndFail(const File& failed, int error) {
  // A full disk accepts only a part of the message, and no scene after that part could be read.
  const int scenesError = scenes_.cutBack();
  const int indexError = index_.cutBack();
  if (scenesError != 0 || indexError != 0) {
    throw RecordingError(failed.path.string() + ": " + std::generic_category().message(error) +
                         ", and its last message is cut off");
  }
  fail(failed.path, error);
}

}  // namespace vod::recording
