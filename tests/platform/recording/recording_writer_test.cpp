// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "recording/recording_writer.h"

#include "recording/recording_reader.h"
#include "support/temporary_folder.h"

#include <gmock/gmock.h>
#include <sys/resource.h>

#include <csignal>
#include <filesystem>
#include <fstream>

namespace vod::recording {
namespace {

using tarn::test::TemporaryFolder;

std::vector<std::string> scenesOf(const std::filesystem::path& folder) {
  RecordingReader reader(folder);
  std::vector<std::string> scenes;
  NextScene next = reader.next();
  for (; std::holds_alternative<RecordedScene>(next); next = reader.next()) {
    scenes.push_back(std::get<RecordedScene>(next).bytes);
  }
  EXPECT_TRUE(std::holds_alternative<EndOfRecording>(next));
  return scenes;
}

class ARecordingBeingWritten : public testing::Test {
 protected:
  const TemporaryFolder temporary_;
  const std::filesystem::path folder_ = temporary_.path() / "deep" / "recording";
};

TEST_F(ARecordingBeingWritten, MakesItsFolder) {
  const RecordingWriter writer(folder_, "detector");
  EXPECT_EQ(readDetectorInformation(folder_), "detector");
  EXPECT_THAT(scenesOf(folder_), testing::IsEmpty());
}

TEST_F(ARecordingBeingWritten, CanBeReadAfterEachMessage) {
  RecordingWriter writer(folder_, "detector");
  writer.append("one");
  EXPECT_THAT(scenesOf(folder_), testing::ElementsAre("one"));
  const std::string longMessage(100'000, 'x');
  writer.append(longMessage);
  writer.append("");
  EXPECT_THAT(scenesOf(folder_), testing::ElementsAre("one", longMessage, ""));
}

TEST_F(ARecordingBeingWritten, TakesBytesOfAnyValue) {
  std::string bytes;
  for (int value = 0; value < 256; ++value) {
    bytes.push_back(static_cast<char>(value));
  }
  RecordingWriter writer(folder_, bytes);
  writer.append(bytes);
  EXPECT_EQ(readDetectorInformation(folder_), bytes);
  EXPECT_THAT(scenesOf(folder_), testing::ElementsAre(bytes));
}

TEST_F(ARecordingBeingWritten, LeavesARecordingThatIsThereAlone) {
  { RecordingWriter(folder_, "first").append("scene"); }
  EXPECT_THAT(
      [&] { RecordingWriter(folder_, "second"); },
      testing::ThrowsMessage<RecordingError>((folder_ / detectorInformationFileName).string() + ": File exists"));
  EXPECT_EQ(readDetectorInformation(folder_), "first");
  EXPECT_THAT(scenesOf(folder_), testing::ElementsAre("scene"));
}

TEST_F(ARecordingBeingWritten, RefusesAMessageBeyondTheBound) {
  RecordingWriter writer(folder_, "");
  EXPECT_THAT([&] { writer.append(std::string(maximumMessageSize + 1, 'x')); },
              testing::ThrowsMessage<RecordingError>((folder_ / scenesFileName).string() +
                                                     ": a message of 16777217 bytes is longer than the 16777216 bytes "
                                                     "allowed"));
  writer.append("next");
  EXPECT_THAT(scenesOf(folder_), testing::ElementsAre("next"));
}

TEST_F(ARecordingBeingWritten, ReportsAFolderThatCannotBeCreated) {
  std::ofstream(temporary_.path() / "file") << "in the way";
  EXPECT_THAT([&] { RecordingWriter(temporary_.path() / "file" / "recording", ""); },
              testing::Throws<RecordingError>());
}

/** Stands for a full disk: files of this process end after so many bytes. */
class FileSizeLimit {
 public:
  explicit FileSizeLimit(rlim_t bytes) : handler_(std::signal(SIGXFSZ, SIG_IGN)) {
    ::getrlimit(RLIMIT_FSIZE, &before_);
    const rlimit limit{bytes, before_.rlim_max};
    ::setrlimit(RLIMIT_FSIZE, &limit);
  }
  ~FileSizeLimit() {
    ::setrlimit(RLIMIT_FSIZE, &before_);
    std::signal(SIGXFSZ, handler_);
  }
  FileSizeLimit(const FileSizeLimit&) = delete;
  FileSizeLimit& operator=(const FileSizeLimit&) = delete;

 private:
  rlimit before_{};
  void (*handler_)(int);
};

TEST_F(ARecordingBeingWritten, LeavesNothingThatBlocksTheFolderWhenItsScenesCannotBeCreated) {
  std::filesystem::create_directories(folder_ / scenesFileName);
  EXPECT_THAT([&] { RecordingWriter(folder_, "detector"); },
              testing::ThrowsMessage<RecordingError>((folder_ / scenesFileName).string() + ": File exists"));
  EXPECT_FALSE(std::filesystem::exists(folder_ / detectorInformationFileName));
  EXPECT_FALSE(std::filesystem::exists(folder_ / indexFileName));
}

TEST_F(ARecordingBeingWritten, LeavesNothingWhenThereIsNoRoomForItsIndex) {
  {
    const FileSizeLimit limit(10);
    EXPECT_THAT([&] { RecordingWriter(folder_, "detector"); },
                testing::ThrowsMessage<RecordingError>((folder_ / indexFileName).string() + ": File too large"));
  }
  EXPECT_TRUE(std::filesystem::is_empty(folder_));
}

TEST_F(ARecordingBeingWritten, KeepsAnIndexThatIsNotItsOwn) {
  std::filesystem::create_directories(folder_);
  std::ofstream(folder_ / indexFileName) << "index";
  EXPECT_THROW(RecordingWriter(folder_, "detector"), RecordingError);
  EXPECT_EQ(std::filesystem::file_size(folder_ / indexFileName), 5U);
  EXPECT_FALSE(std::filesystem::exists(folder_ / detectorInformationFileName));
}

TEST_F(ARecordingBeingWritten, EndsWithTheMessageBeforeTheOneForWhichThereWasNoRoom) {
  RecordingWriter writer(folder_, "");
  writer.append("one");
  {
    const FileSizeLimit limit(10);
    EXPECT_THAT([&] { writer.append("a message that fits in part"); },
                testing::ThrowsMessage<RecordingError>((folder_ / scenesFileName).string() + ": File too large"));
  }
  EXPECT_THAT(scenesOf(folder_), testing::ElementsAre("one"));
  writer.append("two");
  EXPECT_THAT(scenesOf(folder_), testing::ElementsAre("one", "two"));
}

TEST_F(ARecordingBeingWritten, EndsWithTheMessageBeforeTheOneWhoseEntryHasNoRoom) {
  RecordingWriter writer(folder_, "");
  writer.append("one");
  {
    const FileSizeLimit limit(2 * indexEntrySize + 10);
    EXPECT_THAT([&] { writer.append("two"); },
                testing::ThrowsMessage<RecordingError>((folder_ / indexFileName).string() + ": File too large"));
  }
  EXPECT_THAT(scenesOf(folder_), testing::ElementsAre("one"));
  writer.append("three");
  EXPECT_THAT(scenesOf(folder_), testing::ElementsAre("one", "three"));
  SceneIndex index(folder_);
  EXPECT_EQ(index.size(), 2U);
  EXPECT_TRUE(matches(*index.at(1), "three"));
}

TEST_F(ARecordingBeingWritten, HasNoIndexUnlessOneIsWanted) {
  RecordingWriter(folder_, "", std::nullopt).append("one");
  EXPECT_THAT(scenesOf(folder_), testing::ElementsAre("one"));
  EXPECT_FALSE(std::filesystem::exists(folder_ / indexFileName));
}

TEST_F(ARecordingBeingWritten, KnowsItsSize) {
  RecordingWriter writer(folder_, "detector");
  writer.append("one");
  std::uintmax_t size = 0;
  for (const auto& file : std::filesystem::directory_iterator(folder_)) {
    size += file.file_size();
  }
  EXPECT_EQ(writer.size(), size);
}

}  // namespace
}  // namespace vod::recording
