// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "viewer/kept_frames.h"

#include <gtest/gtest.h>

#include <string>

using namespace std::chrono_literals;
using tarn::command::Clock;
using tarn::command::KeptFrames;

namespace {

constexpr Clock::time_point start{1s};

constexpr const char* nothing = "{\"frames\":[],\"more\":false}\n";

/** Four frames of ten bytes, at 1000, 1100, 1100 and 1200 ms. */
void addFour(KeptFrames& kept) {
  kept.add(start, R"({"name":1})");
  kept.add(start + 100ms, R"({"name":2})");
  kept.add(start + 100ms, R"({"name":3})");
  kept.add(start + 200ms, R"({"name":4})");
}

TEST(KeptFramesOfTheLastMinutes, AreGivenInOrderFromATimeOn) {
  KeptFrames kept;
  addFour(kept);

  EXPECT_EQ(kept.since(1100), R"({"frames":[{"at":1100,"frame":{"name":2}},{"at":1100,"frame":{"name":3}},)"
                              R"({"at":1200,"frame":{"name":4}}],"more":false})"
                              "\n");
  EXPECT_EQ(kept.since(1201), nothing);
}

TEST(KeptFramesOfTheLastMinutes, AreForgottenWhenTheyAreTooOld) {
  KeptFrames kept({1s, 1000, 1000});
  addFour(kept);
  kept.add(start + 1150ms, R"({"name":5})");

  EXPECT_EQ(
      kept.since(0),
      std::string(R"({"frames":[{"at":1200,"frame":{"name":4}},{"at":2150,"frame":{"name":5}}],"more":false})") + '\n');
}

TEST(KeptFramesOfTheLastMinutes, AreForgottenWhenTheyAreTogetherTooLong) {
  KeptFrames kept({60s, 25, 1000});
  addFour(kept);
  EXPECT_EQ(
      kept.since(0),
      std::string(R"({"frames":[{"at":1100,"frame":{"name":3}},{"at":1200,"frame":{"name":4}}],"more":false})") + '\n');

  kept.add(start + 300ms, std::string(26, ' '));
  EXPECT_EQ(kept.since(0), nothing) << "a frame that never fits";
}

TEST(KeptFramesOfTheLastMinutes, OfOneTimeAreNeverInDifferentAnswers) {
  KeptFrames kept({60s, 1000, 40});
  addFour(kept);

  EXPECT_EQ(
      kept.since(1001),
      std::string(R"({"frames":[{"at":1100,"frame":{"name":2}},{"at":1100,"frame":{"name":3}}],"more":true})") + '\n');
  EXPECT_EQ(kept.since(1101), std::string(R"({"frames":[{"at":1200,"frame":{"name":4}}],"more":false})") + '\n');
}

}  // namespace
