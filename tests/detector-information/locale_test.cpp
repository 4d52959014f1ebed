// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "support/detector_builder.h"

#include <gmock/gmock.h>
#include <tarnvod/detector_information.h>
#include <tarnvod/video_object_detection.pb.h>

#include <clocale>
#include <cstdlib>

namespace tarn::VOD {
namespace {

using testing::ElementsAre;
using testing::Key;

constexpr const char* name = "GR\xC4N-Z";

::VOD::DetectorInformation messageWithClass() {
  ::VOD::DetectorInformation message;
  test::addClass(message, 1, name);
  return message;
}

/** A locale in which the byte C4 is an upper case letter, and E4 the same letter in lower case. */
class AnEightBitLocale : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_EQ(setenv("LOCPATH", TARNVOD_TEST_LOCALES, 1), 0);
    ASSERT_NE(std::setlocale(LC_CTYPE, "eight_bit"), nullptr);
  }
  void TearDown() override { std::setlocale(LC_CTYPE, "C"); }
};

TEST_F(AnEightBitLocale, SaysWhichBytesOfAClassNameAreInUpperCase) {
  const DetectorInformation information(messageWithClass());
  EXPECT_THAT(information.getClassifications().getClassNames(), ElementsAre("gr\xE4n-z"));
  EXPECT_THAT(information.getCalibrationsContainer(), ElementsAre(Key("gr\xE4n-z")));
}

TEST_F(AnEightBitLocale, LeavesTheNamesOfObjectVariantsAsSent) {
  EXPECT_THAT(DetectorInformation(messageWithClass()).getObjectVariants(), ElementsAre(Key(name)));
}

TEST(TheLocaleOfAProgramThatSetsNone, LowersAsciiLettersOnly) {
  const DetectorInformation information(messageWithClass());
  EXPECT_THAT(information.getClassifications().getClassNames(), ElementsAre("gr\xC4n-z"));
}

TEST(EachAsciiLetter, IsLoweredInAClassName) {
  ::VOD::DetectorInformation message;
  test::addClass(message, 1, "ABCDEFGHIJKLMNOPQRSTUVWXYZ[@");
  EXPECT_THAT(DetectorInformation(message).getClassifications().getClassNames(),
              ElementsAre("abcdefghijklmnopqrstuvwxyz[@"));
}

}  // namespace
}  // namespace tarn::VOD
