// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "situations.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using testing::HasSubstr;
using testing::IsEmpty;

namespace {

struct ViewMisuse {
  const char* name;
  std::vector<std::string> arguments;
  const char* complaint;
};

[[maybe_unused]] void PrintTo(const ViewMisuse& misuse, std::ostream* out) {
  *out << misuse.name;
}

class AMisuseOfView : public testing::TestWithParam<ViewMisuse> {};

TEST_P(AMisuseOfView, EndsWithCodeTwoAndOneLineThatNamesIt) {
  std::vector<std::string> arguments = GetParam().arguments;
  arguments.insert(arguments.begin(), "view");

  const test::Outcome outcome = test::run(arguments);

  EXPECT_EQ(outcome.exitCode, 2);
  EXPECT_THAT(outcome.output, IsEmpty());
  EXPECT_TRUE(test::isOneLine(outcome.errors));
  EXPECT_THAT(outcome.errors, HasSubstr(GetParam().complaint));
}

INSTANTIATE_TEST_SUITE_P(
    OfTheCommand, AMisuseOfView,
    testing::Values(ViewMisuse{"WithSeventeenRecordings",
                               {"a", "b", "c", "d", "e", "f", "g", "h", "i", "j", "k", "l", "m", "n", "o", "p", "q"},
                               "up to 16 recordings"},
                    ViewMisuse{"WithARecordingAndACamera", {"a", "1"}, "without options of cameras"},
                    ViewMisuse{"WithOneBackgroundForTwoCameras", {"1", "2", "--background", "x"}, "CAMERA=FILE"},
                    ViewMisuse{"WithCameraAndRecording", {"--camera", "1", "--recording", "x"}, "--recording"},
                    ViewMisuse{"WithClassAndRecording", {"--recording", "x", "--class", "car"}, "--recording"},
                    ViewMisuse{"WithCameraZero", {"--camera", "0"}, "counted from 1"},
                    ViewMisuse{"WithAPortThatIsNone", {"--camera", "1", "--port", "65536"}, "65536"},
                    ViewMisuse{"WithAnUnknownBox", {"--camera", "1", "--box", "round"}, "round"},
                    ViewMisuse{"WithAnEmptyRange", {"--camera", "1", "--range", "1,0,1,1"}, "--range"},
                    ViewMisuse{"WithAStrangeShape", {"--camera", "1", "--aspect", "4:0"}, "4:0"}),
    [](const auto& misuse) { return misuse.param.name; });

TEST(ThatHelp, ListsWhatViewTakes) {
  const test::Outcome outcome = test::run({"view", "--help"});

  EXPECT_EQ(outcome.exitCode, 0);
  for (const char* option : {"--camera", "--recording", "--port", "--address", "--box", "--aspect"}) {
    EXPECT_THAT(outcome.output, HasSubstr(option));
  }
}

}  // namespace
