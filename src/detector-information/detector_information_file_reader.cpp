// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include <tarnvod/detector_information_file_reader.h>
#include <tarnvod/video_object_detection.pb.h>

#include <ios>
#include <iterator>

namespace tarn::VOD {
namespace {

/** Everything from where the file stands to its end; nothing when it cannot be read. */
std::string readRest(std::ifstream& file) {
  try {
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
  } catch (const std::ios_base::failure&) {  // the stream buffer throws it when what was opened is a folder
    return {};
  }
}

}  // namespace

DetectorInformationFileReader::DetectorInformationFileReader(const std::string& path)
    : file_(path, std::ios::in | std::ios::binary) {
  if (!file_.is_open()) {
    throw "Unable to open detector information file";
  }
}

DetectorInformation DetectorInformationFileReader::parseDetectorInformation() {
  const std::string content = readRest(file_);
  if (content.empty()) {
    throw "Unable to parse detector information from file";
  }
  ::VOD::DetectorInformation message;
  static_cast<void>(message.ParseFromString(content));  // what could be read of a broken file is the result
  return DetectorInformation(message);
}

}  // namespace tarn::VOD
