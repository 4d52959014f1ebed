// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "recording/recording_reader.h"

#include "support/temporary_folder.h"

#include <gmock/gmock.h>
#include <sys/stat.h>

#include <array>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>

namespace vod::recording {
namespace {

using tarn::test::TemporaryFolder;

RecordingReader readerOf(const std::string& bytes, std::size_t maximumSize = maximumMessageSize) {
  return {std::make_unique<std::istringstream>(bytes), "stream", maximumSize};
}

testing::Matcher<NextScene> isScene(const std::string& bytes, std::int64_t offset) {
  return testing::VariantWith<RecordedScene>(
      testing::AllOf(testing::Field(&RecordedScene::bytes, bytes), testing::Field(&RecordedScene::offset, offset)));
}

testing::Matcher<NextScene> isEnd() {
  return testing::VariantWith<EndOfRecording>(testing::_);
}

testing::Matcher<NextScene> isDamage(const std::string& text) {
  return testing::VariantWith<Damage>(testing::ResultOf([](const Damage& damage) { return toString(damage); }, text));
}

TEST(ARecording, GivesItsMessagesWithTheirOffsetsAndThenItsEnd) {
  RecordingReader reader = readerOf(std::string("\x03one\x00\x05three", 11));
  EXPECT_THAT(reader.next(), isScene("one", 0));
  EXPECT_THAT(reader.next(), isScene("", 4));
  EXPECT_THAT(reader.next(), isScene("three", 5));
  EXPECT_THAT(reader.next(), isEnd());
  EXPECT_THAT(reader.next(), isEnd());
}

TEST(ARecording, MayBeEmpty) {
  EXPECT_THAT(readerOf("").next(), isEnd());
}

TEST(ARecording, MayHoldMessagesThatAreLongerThanAReadAhead) {
  const std::string longMessage(100'000, 'x');
  RecordingReader reader = readerOf("\xa0\x8d\x06" + longMessage + "\x01y");
  EXPECT_THAT(reader.next(), isScene(longMessage, 0));
  EXPECT_THAT(reader.next(), isScene("y", 100'003));
}

TEST(ADamagedRecording, GivesWhatIsBeforeAMessageThatIsCutOff) {
  RecordingReader reader = readerOf("\x03one\x05thr");
  EXPECT_THAT(reader.next(), isScene("one", 0));
  EXPECT_THAT(reader.next(), isDamage("stream: offset 4: a message of 5 bytes is cut off after 3"));
  EXPECT_THAT(reader.next(), isDamage("stream: offset 4: a message of 5 bytes is cut off after 3"));
}

TEST(ADamagedRecording, IsRecognisedAtEveryPlaceWhereItIsCut) {
  const std::string whole = std::string("\x80\x01") + std::string(128, 'x');
  for (std::size_t size = 1; size < whole.size(); ++size) {
    EXPECT_THAT(readerOf(whole.substr(0, size)).next(), testing::VariantWith<Damage>(testing::_)) << size;
  }
  EXPECT_THAT(readerOf(whole).next(), isScene(std::string(128, 'x'), 0));
}

TEST(ADamagedRecording, ReportsALengthThatIsCutOff) {
  EXPECT_THAT(readerOf("\x80").next(), isDamage("stream: offset 0: the file ends within the length of a message"));
}

TEST(ADamagedRecording, ReportsALengthThatIsNotAVarint) {
  EXPECT_THAT(readerOf(std::string(20, '\xff')).next(),
              isDamage("stream: offset 0: the length of a message is not a valid varint"));
}

TEST(ADamagedRecording, ReportsALengthBeyondTheBoundWithoutAllocatingIt) {
  EXPECT_THAT(readerOf("\xff\xff\xff\xff\x0f").next(),
              isDamage("stream: offset 0: a message of 4294967295 bytes is longer than the 16777216 bytes allowed"));
}

TEST(ADamagedRecording, ReportsAMessageThatIsOneByteLongerThanTheBound) {
  EXPECT_THAT(readerOf("\x03one", 3).next(), isScene("one", 0));
  EXPECT_THAT(readerOf(std::string(1, 4) + "five", 3).next(),
              isDamage("stream: offset 0: a message of 4 bytes is longer than the 3 bytes allowed"));
}

TEST(ADamagedRecording, ReportsAReadError) {
  class FailingBuffer : public std::stringbuf {
    int_type underflow() override { throw std::runtime_error("read error"); }
  };
  FailingBuffer buffer;
  EXPECT_THAT(RecordingReader(std::make_unique<std::istream>(&buffer), "stream").next(),
              isDamage("stream: offset 0: cannot be read"));
}

/** A folder in which both files of a recording are made by the test, the same way. */
class RecordingFiles : public testing::Test {
 protected:
  template <typename Make>
  void make(Make makeFile) const {
    for (const std::filesystem::path& file : files_) {
      makeFile(file);
    }
  }
  /** Neither file can be opened, and the error names it. */
  void expectErrors(const std::string& reason) const {
    const auto error = [&](const std::string& file) {
      return testing::Throws<RecordingError>(
          testing::Property(&RecordingError::what, testing::StrEq(file + ": " + reason)));
    };
    EXPECT_THAT([&] { RecordingReader(folder_.path()); }, error(files_[0]));
    EXPECT_THAT([&] { readDetectorInformation(folder_.path()); }, error(files_[1]));
  }

  const TemporaryFolder folder_;
  const std::array<std::filesystem::path, 2> files_ = {folder_.path() / scenesFileName,
                                                       folder_.path() / detectorInformationFileName};
};

using AMissingRecording = RecordingFiles;
TEST_F(AMissingRecording, IsRefused) {
  expectErrors("No such file or directory");
}

using ARecordingMadeOfFolders = RecordingFiles;
TEST_F(ARecordingMadeOfFolders, IsRefused) {
  make([](const std::filesystem::path& file) { std::filesystem::create_directory(file); });
  expectErrors("not a regular file");
}

using ARecordingMadeOfFifos = RecordingFiles;
TEST_F(ARecordingMadeOfFifos, IsRefusedWithoutWaitingForAWriter) {
  make([](const std::filesystem::path& file) { ASSERT_EQ(::mkfifo(file.c_str(), 0600), 0); });
  expectErrors("not a regular file");
}

using ARecordingMadeOfEndlessDevices = RecordingFiles;
TEST_F(ARecordingMadeOfEndlessDevices, IsRefused) {
  make([](const std::filesystem::path& file) { std::filesystem::create_symlink("/dev/zero", file); });
  expectErrors("not a regular file");
}

using ARecordingMadeOfLinks = RecordingFiles;
TEST_F(ARecordingMadeOfLinks, IsRead) {
  std::ofstream(folder_.path() / "file") << "\x03one";
  make([](const std::filesystem::path& file) { std::filesystem::create_symlink("file", file); });
  EXPECT_THAT(RecordingReader(folder_.path()).next(), isScene("one", 0));
  EXPECT_EQ(readDetectorInformation(folder_.path()), "\x03one");
}

}  // namespace
}  // namespace vod::recording
