// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "support/detector_builder.h"
#include "support/temporary_folder.h"
#include "support/wire_bytes.h"

#include <gmock/gmock.h>
#include <tarnvod/detector_information_file_reader.h>
#include <tarnvod/video_object_detection.pb.h>

#include <filesystem>

namespace tarn::VOD {
namespace {

using testing::ElementsAre;
using testing::StrEq;

constexpr auto cannotOpen = "Unable to open detector information file";
constexpr auto cannotParse = "Unable to parse detector information from file";

/** What the action throws, or nothing. */
template <typename Action>
std::string thrownBy(const Action& action) {
  try {
    action();
  } catch (const char* text) {
    return text;
  }
  return "nothing";
}

/** A folder of its own for each test, gone afterwards. */
class AFile : public testing::Test {
 protected:
  std::string folder() const { return folder_.path(); }
  std::string path() const { return folder_.path() / "detector-information.pb"; }

  DetectorInformationFileReader readerOf(const std::string& bytes) const {
    std::ofstream(path(), std::ios::binary) << bytes;
    return DetectorInformationFileReader(path());
  }

 private:
  const test::TemporaryFolder folder_;
};

TEST_F(AFile, ThatDoesNotExistCannotBeOpened) {
  EXPECT_THAT(thrownBy([&] { DetectorInformationFileReader reader(path()); }), StrEq(cannotOpen));
  EXPECT_THAT(thrownBy([] { DetectorInformationFileReader reader(""); }), StrEq(cannotOpen));
}

TEST_F(AFile, ThatIsEmptyOpensButCannotBeParsed) {
  auto reader = readerOf("");
  EXPECT_THAT(thrownBy([&] { reader.parseDetectorInformation(); }), StrEq(cannotParse));
}

TEST_F(AFile, ThatIsAFolderOpensButCannotBeParsed) {
  DetectorInformationFileReader reader(folder());
  EXPECT_THAT(thrownBy([&] { reader.parseDetectorInformation(); }), StrEq(cannotParse));
  EXPECT_THAT(thrownBy([&] { reader.parseDetectorInformation(); }), StrEq(cannotParse));
}

TEST_F(AFile, WithAMessageGivesItsInformation) {
  ::VOD::DetectorInformation message;
  test::addClass(message, 7, "Person");
  message.mutable_properties()->set_camera_nbr(3);
  const auto information = readerOf(message.SerializeAsString()).parseDetectorInformation();
  EXPECT_EQ(information, DetectorInformation(message));
  EXPECT_EQ(information.getCameraNbr(), 4);
}

TEST_F(AFile, MayHoldLineEndsZerosAndWhiteSpace) {
  ::VOD::DetectorInformation message;
  test::addClass(message, 10, std::string(" a\r\n\0\x1A ", 7));
  EXPECT_EQ(readerOf(message.SerializeAsString()).parseDetectorInformation(), DetectorInformation(message));
}

TEST_F(AFile, MayBeLongerThanAStreamBuffer) {
  ::VOD::DetectorInformation message;
  for (std::uint32_t id = 0; id < 5000; ++id) {
    test::addClass(message, id, "class " + std::to_string(id));
  }
  EXPECT_EQ(readerOf(message.SerializeAsString()).parseDetectorInformation(), DetectorInformation(message));
}

TEST_F(AFile, ThatHasBeenReadToItsEndCannotBeParsedAgain) {
  ::VOD::DetectorInformation message;
  test::addClass(message, 1, "car");
  auto reader = readerOf(message.SerializeAsString());
  reader.parseDetectorInformation();
  EXPECT_THAT(thrownBy([&] { reader.parseDetectorInformation(); }), StrEq(cannotParse));
}

TEST_F(AFile, OfGarbageGivesAnEmptyModel) {
  EXPECT_EQ(readerOf("\xFF\xFF garbage").parseDetectorInformation(), DetectorInformation(::VOD::DetectorInformation()));
}

TEST_F(AFile, ThatIsCutOffGivesWhatStandsBeforeTheCut) {
  ::VOD::DetectorInformation message;
  test::addClass(message, 1, "car");
  const auto information = readerOf(message.SerializeAsString() + test::wire("0A 20 08")).parseDetectorInformation();
  EXPECT_TRUE(information.getClassifications().areAllClassesSupported({"car"}));
}

TEST_F(AFile, CanBeReadByAReaderThatWasMoved) {
  auto reader = readerOf(test::wire("1A 02 08 01"));
  auto moved = std::move(reader);
  EXPECT_EQ(moved.parseDetectorInformation().getCameraNbr(), 2);
}

}  // namespace
}  // namespace tarn::VOD
