// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include <gmock/gmock.h>
#include <vod_host.h>

#include <fstream>
#include <iterator>
#include <regex>
#include <set>
#include <string>

namespace vod::host {
namespace {

#define QUOTED(enumerator, function) #function,
const std::set<std::string> listed = {VOD_HOST_FUNCTIONS(QUOTED)};
#undef QUOTED

std::set<std::string> declaredFunctions() {
  std::ifstream header(TARNVOD_TEST_C_INTERFACE);
  const std::string text{std::istreambuf_iterator<char>(header), {}};
  const std::regex declaration(R"(^(?:int|bool) (video_object_detection_\w+)\()", std::regex::multiline);
  std::set<std::string> names;
  for (std::sregex_iterator match(text.begin(), text.end(), declaration), end; match != end; ++match) {
    names.insert((*match)[1]);
  }
  return names;
}

TEST(TheListOfFunctions, HoldsWhatTheHeaderOfTheCInterfaceDeclares) {
  EXPECT_THAT(listed, testing::ContainerEq(declaredFunctions()));
}

TEST(TheListOfFunctions, HasAnEnumeratorForEach) {
  EXPECT_EQ(everyFunction.size(), listed.size());
}

TEST(TheNameOfAFunction, IsItsCNameWithoutThePrefix) {
  EXPECT_STREQ(name(Function::SetReceiveEmptyHits), "set_receive_empty_hits");
  EXPECT_STREQ(name(Function::SetChannelConfiguration), "set_channel_configuration");
}

}  // namespace
}  // namespace vod::host
