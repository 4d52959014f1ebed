// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "sample_messages.h"
#include "support/wire_bytes.h"

#include <gtest/gtest.h>
#include <tarnvod/video_object_detection.pb.h>

namespace {

namespace sample = tarn::test::sample;

/** The bytes of as many whole fields as there are within the first `length` bytes. */
std::string wholeFields(const std::vector<std::string>& fields, std::size_t length) {
  std::string bytes;
  for (const auto& one : fields) {
    if (bytes.size() + one.size() > length) {
      break;
    }
    bytes += one;
  }
  return bytes;
}

/**
 * A message that is cut off is valid exactly if the cut is between two of its fields. Otherwise parsing fails, and the
 * fields before the cut have been read.
 */
template <typename Message>
void expectCleanTruncation(const std::vector<std::string>& fields) {
  const auto bytes = sample::joined(fields);
  for (std::size_t length = 0; length <= bytes.size(); ++length) {
    SCOPED_TRACE("cut after " + std::to_string(length) + " bytes");
    const auto whole = wholeFields(fields, length);
    Message message;
    EXPECT_EQ(tarn::test::parse(std::string_view(bytes).substr(0, length), message), whole.size() == length);
    EXPECT_EQ(message.SerializeAsString().substr(0, whole.size()), whole);
  }
}

TEST(ATruncatedMessage, KeepsTheFieldsBeforeTheCutOfADetectorInformation) {
  expectCleanTruncation<VOD::DetectorInformation>(sample::detectorInformationBytes());
}

TEST(ATruncatedMessage, KeepsTheFieldsBeforeTheCutOfAScene) {
  expectCleanTruncation<VOD::Scene>(sample::sceneBytes());
}

}  // namespace
