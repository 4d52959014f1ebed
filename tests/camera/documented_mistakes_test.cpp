// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

// The documents list what goes wrong with cameras. For each entry documented_mistakes.txt names the test that shows what a
// `Camera` makes of it, or the reason why there is nothing to report. Both are compared here with what there is.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <regex>
#include <set>
#include <stdexcept>
#include <string>
#include <vector>

namespace tarn::test {
namespace {

using testing::Contains;
using testing::IsEmpty;
using testing::SizeIs;

std::vector<std::string> linesOf(const std::string& path) {
  std::ifstream file(path);
  if (!file) {
    throw std::runtime_error(path + " cannot be read");
  }
  std::vector<std::string> lines;
  for (std::string line; std::getline(file, line);) {
    lines.push_back(line);
  }
  return lines;
}

/** The first cell of each row of a document's tables, without their heads, and what begins a paragraph in bold. */
std::vector<std::string> entriesOf(const std::string& document) {
  static const std::regex cell(R"(\| (.*?) \|.*)");
  static const std::regex bold(R"(\*\*(.*?)\*\*.*)");
  std::vector<std::string> entries;
  std::smatch match;
  for (const std::string& line : linesOf(document)) {
    if (line.rfind("|---", 0) == 0) {
      entries.pop_back();
    } else if (std::regex_match(line, match, cell) || std::regex_match(line, match, bold)) {
      entries.push_back(match[1]);
    }
  }
  return entries;
}

struct Answer {
  std::string entry;  ///< how it begins
  std::string test;   ///< empty when a reason is given instead
};

std::vector<Answer> answers() {
  static const std::regex form("(.*) => (?:-- .*|(.*))");
  std::vector<Answer> all;
  for (const std::string& line : linesOf(TARNVOD_TEST_CAMERA_FOLDER "/documented_mistakes.txt")) {
    std::smatch match;
    if (line.empty() || line.front() == '#') {
      continue;
    }
    if (!std::regex_match(line, match, form)) {
      throw std::runtime_error("documented_mistakes.txt: " + line);
    }
    all.push_back({match[1], match[2]});
  }
  return all;
}

bool begins(const std::string& text, const std::string& beginning) {
  return text.rfind(beginning, 0) == 0;
}

/** The tests of this program, without the numbers of their parameters. */
std::set<std::string> testNames() {
  std::set<std::string> names;
  const testing::UnitTest& program = *testing::UnitTest::GetInstance();
  for (int suite = 0; suite < program.total_test_suite_count(); ++suite) {
    const testing::TestSuite& tests = *program.GetTestSuite(suite);
    for (int test = 0; test < tests.total_test_count(); ++test) {
      const std::string name = tests.GetTestInfo(test)->name();
      names.insert(std::string(tests.name()) + '.' + name.substr(0, name.find('/')));
    }
  }
  return names;
}

class ADocumentOfMistakes : public testing::TestWithParam<const char*> {
 protected:
  const std::vector<std::string> entries_ = entriesOf(std::string(TARNVOD_TEST_DOCUMENTS "/") + GetParam());
};

TEST_P(ADocumentOfMistakes, HasAnAnswerOfACameraForEachEntry) {
  const std::vector<Answer> all = answers();
  ASSERT_THAT(entries_, SizeIs(testing::Ge(20U)));
  for (const std::string& entry : entries_) {
    const auto matching =
        std::count_if(all.begin(), all.end(), [&](const Answer& answer) { return begins(entry, answer.entry); });
    EXPECT_EQ(matching, 1) << entry;
  }
}

INSTANTIATE_TEST_SUITE_P(Of, ADocumentOfMistakes, testing::Values("intended-oddities.md", "troubleshooting.md"));

TEST(AnAnswerToADocumentedMistake, IsGivenByATestOfThisProgram) {
  const std::set<std::string> names = testNames();
  for (const Answer& answer : answers()) {
    if (!answer.test.empty()) {
      EXPECT_THAT(names, Contains(answer.test)) << answer.entry;
    }
  }
}

TEST(AnAnswerToADocumentedMistake, BelongsToAnEntryThatExists) {
  std::vector<std::string> entries = entriesOf(TARNVOD_TEST_DOCUMENTS "/intended-oddities.md");
  const std::vector<std::string> others = entriesOf(TARNVOD_TEST_DOCUMENTS "/troubleshooting.md");
  entries.insert(entries.end(), others.begin(), others.end());
  for (const Answer& answer : answers()) {
    const bool exists = std::any_of(entries.begin(), entries.end(),
                                    [&](const std::string& entry) { return begins(entry, answer.entry); });
    EXPECT_TRUE(exists) << answer.entry;
  }
}

}  // namespace
}  // namespace tarn::test
