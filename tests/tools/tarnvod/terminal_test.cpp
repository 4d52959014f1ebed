// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "base/terminal.h"

#include "situations.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>

using tarn::command::Style;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

namespace {

class WatchOnATerminal : public test::TwoCameras {
 protected:
  test::Environment onTerminal(const std::string& more) const {
    test::Environment environment = playing();
    environment.push_back(more);
    return environment;
  }
};

TEST_F(WatchOnATerminal, DrawsATableInPlace) {
  test::Process watch(test::command(), {"watch", "--camera", "1", "2"}, onTerminal("NO_COLOR="),
                      test::Process::Output::Terminal);
  watch.waitForOutput("camera 2");
  watch.waitForOutput("coat red");

  EXPECT_THAT(watch.output(), StartsWith("\x1b[?1049h\x1b[?25l"));
  EXPECT_THAT(watch.output(), HasSubstr("camera 1"));
  EXPECT_THAT(watch.output(), HasSubstr("\x1b[32mconfident"));
  EXPECT_THAT(watch.output(), HasSubstr(" frames/s"));
}

TEST_F(WatchOnATerminal, GivesTheCursorBackAndSumsUp) {
  test::Process watch(test::command(), {"watch", "--camera", "1"}, onTerminal("NO_COLOR="),
                      test::Process::Output::Terminal);
  watch.waitForOutput("coat red");

  watch.signal(SIGINT);

  const test::Outcome outcome = watch.wait();
  EXPECT_EQ(outcome.exitCode, 0);
  const auto end = outcome.output.rfind("\x1b[?25h\x1b[?1049l");
  ASSERT_NE(end, std::string::npos);
  EXPECT_THAT(outcome.output.substr(end), HasSubstr("camera 1: "));
}

TEST_F(WatchOnATerminal, ShowsNoColourWhereNoneIsWanted) {
  test::Process watch(test::command(), {"watch", "--camera", "1"}, onTerminal("NO_COLOR=1"),
                      test::Process::Output::Terminal);
  watch.waitForOutput("coat red");

  EXPECT_THAT(watch.output(), Not(HasSubstr("\x1b[32m")));
  EXPECT_THAT(watch.output(), Not(HasSubstr("\x1b[1m")));
}

TEST_F(WatchOnATerminal, ShowsLinesWhereTheCursorCannotBeMoved) {
  test::Environment environment = playing();
  environment.push_back("TERM=dumb");
  test::Process watch(test::command(), {"watch", "--camera", "1"}, environment, test::Process::Output::Terminal);

  watch.waitForOutput("camera 1  0:00.000  2 objects: human 7");

  EXPECT_THAT(watch.output(), Not(HasSubstr("\x1b")));
}

TEST_F(WatchOnATerminal, EndsWhenQIsPressed) {
  test::Process watch(test::command(), {"watch", "1"}, playing(), test::Process::Output::TerminalWithKeys);
  watch.waitForOutput("q or Ctrl-C ends");
  watch.waitForOutput("coat red");

  watch.write("q");

  const test::Outcome outcome = watch.wait();
  EXPECT_EQ(outcome.exitCode, 0);
  EXPECT_THAT(outcome.output, HasSubstr("interruptions"));
}

TEST_F(WatchOnATerminal, ShowsValuesRatherThanCuttingThemOff) {
  const std::string script = "stty cols 74; exec \"$0\" \"$@\"";
  test::Process watch("/bin/sh", {"-c", script, test::command(), "watch", "1"}, playing(),
                      test::Process::Output::TerminalWithKeys);

  watch.waitForOutput("s  red");

  EXPECT_THAT(watch.output(), Not(HasSubstr("coa")));
}

TEST(ALineOfTheTable, IsCutAtTheWidthOfTheTerminal) {
  EXPECT_EQ(tarn::command::rendered({{"camera 1", Style::Bold}, {" receives"}}, 12, false), "camera 1 re…");
}

TEST(ALineOfTheTable, HasItsColourTakenBackBehindEachPart) {
  EXPECT_EQ(tarn::command::rendered({{"bad", Style::Bad}, {" plain"}}, 80, true), "\x1b[1;31mbad\x1b[0m plain");
}

}  // namespace
