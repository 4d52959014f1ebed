// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "recordings/recording_output.h"

#include "base/errors.h"
#include "base/files.h"
#include "base/text.h"

#include <recording/segments.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <system_error>

namespace tarn::command {
namespace {

/** Without the slash at the end with which shells complete a folder. */
std::filesystem::path withoutSlash(const std::filesystem::path& folder) {
  return folder.has_filename() ? folder : folder.parent_path();
}

std::filesystem::path checkedFolder(const std::filesystem::path& folder) {
  std::error_code ignored;  // what cannot be looked at cannot be written either, which is reported then
  if (std::filesystem::exists(folder, ignored) && !std::filesystem::is_empty(folder, ignored)) {
    throw Failure(folder.string() + ": not empty; name another folder");
  }
  return withoutSlash(folder);
}

}  // namespace

RecordingOutput::RecordingOutput(const std::filesystem::path& folder, std::string_view detectorInformation,
                                 const std::optional<vod::recording::BootId>& boot)
    : folder_(checkedFolder(folder)), temporary_(folder_.string() + ".partial-" + std::to_string(::getpid())) {
  writer_.emplace(temporary_, detectorInformation, boot);
}

RecordingOutput::~RecordingOutput() {
  if (writer_) {
    writer_.reset();
    std::error_code ignored;  // it is clear from its name that it is not complete
    std::filesystem::remove_all(temporary_, ignored);
  }
}

void RecordingOutput::append(const vod::recording::CheckedScene& scene) {
  writer_->append(scene.bytes, scene.arrival.value_or(vod::recording::Arrival()));
  ++frames_;
  bytes_ += scene.bytes.size();
}

void RecordingOutput::addFile(const std::filesystem::path& file) {
  writeFile(temporary_ / file.filename(), readFile(file, "a regular file"));
}

void RecordingOutput::commit() {
  if (std::rename(temporary_.c_str(), folder_.c_str()) != 0) {
    throw Failure(folder_.string() + ": " + std::generic_category().message(errno));
  }
  writer_.reset();
}

std::string RecordingOutput::summary() const {
  return counted(frames_, "frame") + ", " + byteSize(bytes_) + ", to " + folder_.string();
}

std::optional<vod::recording::BootId> commonBoot(const std::vector<std::filesystem::path>& recordings) {
  std::optional<vod::recording::BootId> common;
  for (const auto& recording : recordings) {
    for (const auto& part : vod::recording::partsOf(recording)) {
      const vod::recording::SceneIndex index(part);
      if (index.exists()) {
        common = !common || *common == index.boot() ? index.boot() : vod::recording::BootId{};
      }
    }
  }
  return common;
}

}  // namespace tarn::command
