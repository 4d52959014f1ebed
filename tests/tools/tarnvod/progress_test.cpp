// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "situations.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <recording/recording_writer.h>

#include <filesystem>
#include <string>
#include <vector>

using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

namespace {

/** A subcommand with its arguments; `IN` stands for a recording, `OUT` for a path that does not exist. */
using Work = std::vector<std::string>;

/** Work that takes longer than the bar takes to appear. */
class LongWork : public testing::TestWithParam<Work> {
 protected:
  LongWork() {
    constexpr int frames = 300;
    vod::recording::RecordingWriter writer(recording_, test::detector().SerializeAsString());
    for (int number = 0; number < frames; ++number) {
      writer.append(test::sceneBytes(number), {1'000 + number, 1'000 + number});
    }
  }

  std::vector<std::string> arguments() const {
    std::vector<std::string> words = GetParam();
    for (std::string& word : words) {
      word = word == "IN" ? recording_.string() : word == "OUT" ? (folder_ / "out").string() : word;
    }
    return words;
  }

 private:
  const test::TemporaryFolder folder_;
  const std::filesystem::path recording_ = folder_ / "long";
};

TEST_P(LongWork, ShowsItsProgressOnTheTerminalAndRemovesItAtTheEnd) {
  // A shell makes the terminal the standard error.
  std::vector<std::string> words{"-c", "exec \"$0\" \"$@\" 2>&1 >/dev/null", test::command()};
  const std::vector<std::string> arguments = this->arguments();
  words.insert(words.end(), arguments.begin(), arguments.end());

  const test::Outcome outcome = test::Process("/bin/sh", words, {}, test::Process::Output::Terminal).wait();

  EXPECT_EQ(outcome.exitCode, 0);
  EXPECT_THAT(outcome.output, StartsWith("\r\x1b[K["));
  EXPECT_THAT(outcome.output, HasSubstr(" %  64 frames  "));
  EXPECT_THAT(outcome.output, EndsWith("\r\x1b[K"));
}

TEST_P(LongWork, ShowsNoProgressInAPipe) {
  const test::Outcome outcome = test::run(arguments(), {"TERM=xterm"});

  EXPECT_EQ(outcome.exitCode, 0);
  EXPECT_THAT(outcome.errors, IsEmpty());
  EXPECT_THAT(outcome.output, testing::Not(HasSubstr("\x1b")));
}

INSTANTIATE_TEST_SUITE_P(OfASubcommand, LongWork,
                         testing::Values(Work{"inspect", "IN"}, Work{"inspect", "IN", "--json"},
                                         Work{"render", "IN", "--output", "OUT"},
                                         Work{"render", "IN", "--frame", "300", "--output", "OUT"},
                                         Work{"export", "IN", "--format", "csv", "--output", "OUT"},
                                         Work{"cut", "IN", "--output", "OUT"},
                                         Work{"merge", "IN", "IN", "--output", "OUT"},
                                         Work{"repair", "IN", "--output", "OUT"}, Work{"compare", "IN", "IN"}));

}  // namespace
