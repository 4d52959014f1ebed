// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "situations.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

namespace {

struct Misuse {
  const char* name;
  std::vector<std::string> arguments;
  const char* complaint;
};

[[maybe_unused]] void PrintTo(const Misuse& misuse, std::ostream* out) {
  *out << misuse.name;
}

class AMisuse : public testing::TestWithParam<Misuse> {};

TEST_P(AMisuse, EndsWithCodeTwoAndOneLineThatNamesIt) {
  const test::Outcome outcome = test::run(GetParam().arguments);

  EXPECT_EQ(outcome.exitCode, 2);
  EXPECT_THAT(outcome.output, IsEmpty());
  EXPECT_TRUE(test::isOneLine(outcome.errors));
  EXPECT_THAT(outcome.errors, StartsWith("tarnvod: "));
  EXPECT_THAT(outcome.errors, HasSubstr(GetParam().complaint));
  EXPECT_THAT(outcome.errors, EndsWith("--help'\n"));
}

INSTANTIATE_TEST_SUITE_P(
    OfTheCommand, AMisuse,
    testing::Values(Misuse{"WithoutSubcommand", {}, "subcommand is required"},
                    Misuse{"WithAnUnknownSubcommand", {"stare"}, "unknown subcommand 'stare'"},
                    Misuse{"WithAnUnknownFlag", {"info", "--loud"}, "--loud"},
                    Misuse{"OfInfoWithCameraAndFile", {"info", "--camera", "1", "--file", "f"}, "--camera"},
                    Misuse{"WithAMisspeltOption", {"record", "--cmera", "1"}, "unknown option '--cmera'"},
                    Misuse{"WithArgumentsThatAreNotExpected",
                           {"inspect", "x", "first", "second"},
                           "unexpected arguments 'first', 'second'"},
                    Misuse{"WithAnUnknownOptionInPlaceOfASubcommand", {"--loud"}, "unknown option '--loud'"},
                    Misuse{"OfWatchWithMoreFramesThanCanBeCounted",
                           {"watch", "--frames", "99999999999999999999"},
                           "'99999999999999999999' is not a number of frames"},
                    Misuse{"OfWatchWithAPartOfAFrame", {"watch", "--frames", "1.5"}, "'1.5'"},
                    Misuse{"OfWatchWithCameraZero", {"watch", "--camera", "0"}, "counted from 1"},
                    Misuse{"OfWatchWithACameraThatIsNoNumber", {"watch", "--camera", "front"}, "front"},
                    Misuse{"OfWatchWithThreeNumbers", {"watch", "--camera", "1", "--roi", "0,0,1"}, "'0,0,1'"},
                    Misuse{"OfWatchWithNoFrames", {"watch", "--camera", "1", "--frames", "0"}, "'0'"},
                    Misuse{"OfWatchWithNegativeSeconds", {"watch", "--camera", "1", "--seconds", "-1"}, "'-1'"},
                    Misuse{"OfWatchWithClassAndAllClasses",
                           {"watch", "--camera", "1", "--class", "car", "--all-classes"},
                           "--all-classes"},
                    Misuse{"OfRecordWithoutFolder", {"record", "--camera", "1"}, "--output"},
                    Misuse{"OfRecordWithoutCamera", {"record", "--output", "x"}, "--camera"},
                    Misuse{"OfInspectWithoutFolder", {"inspect"}, "recording"},
                    Misuse{"OfRenderWithoutOutput", {"render", "x"}, "--output"},
                    Misuse{"OfRenderWithoutSource", {"render", "--output", "x"}, "source"},
                    Misuse{"OfRenderWithAnUnknownBox", {"render", "x", "--output", "y", "--box", "round"}, "round"},
                    Misuse{
                        "OfRenderWithAnEmptyRange", {"render", "x", "--output", "y", "--range", "1,0,1,1"}, "--range"},
                    Misuse{"OfRenderWithAStrangeShape", {"render", "x", "--output", "y", "--aspect", "4:0"}, "4:0"}),
    [](const auto& misuse) { return misuse.param.name; });

TEST(ThatHelp, NamesEverySubcommand) {
  const test::Outcome outcome = test::run({"--help"});

  EXPECT_EQ(outcome.exitCode, 0);
  for (const char* subcommand : {"info", "watch", "record", "inspect", "render"}) {
    EXPECT_THAT(outcome.output, HasSubstr(subcommand));
  }
}

TEST(ThatHelp, OfASubcommandListsItsOptionsUnderItsWholeName) {
  const test::Outcome outcome = test::run({"watch", "--help"});

  EXPECT_EQ(outcome.exitCode, 0);
  EXPECT_THAT(outcome.output, HasSubstr("Usage: tarnvod watch [OPTIONS]"));
  EXPECT_THAT(outcome.output, HasSubstr("--roi"));
}

TEST(ThatVersion, IsTheProjects) {
  const test::Outcome outcome = test::run({"--version"});

  EXPECT_EQ(outcome.exitCode, 0);
  EXPECT_EQ(outcome.output, "tarnvod " TARNVOD_VERSION "\n");
}

}  // namespace
