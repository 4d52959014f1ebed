// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include <gtest/gtest.h>
#include <schedule/observation.h>

using namespace std::chrono_literals;
using vod::schedule::Observation;
using vod::schedule::parseObservation;
using vod::schedule::toLine;

TEST(AnObservation, IsOneLine) {
  EXPECT_EQ(toLine({4711, 5200ms, "subscribed", {{"camera", "1"}, {"subscriber", "3"}}}),
            "4711 5200 subscribed camera=1 subscriber=3\n");
}

TEST(AnObservation, KeepsValuesOfAnyBytes) {
  const std::string name("a b=c%\n\xff\0", 8);
  const std::string line = toLine({1, 0ms, "received", {{"class", name}}});

  EXPECT_EQ(line.find('\n'), line.size() - 1);
  const auto read = parseObservation(line.substr(0, line.size() - 1));
  ASSERT_TRUE(read);
  EXPECT_EQ(read->text("class"), name);
}

TEST(AnObservation, HasNumbersAndNothingForFieldsThatItLacks) {
  const auto read = parseObservation("7 20 mark heap=4096");

  ASSERT_TRUE(read);
  EXPECT_EQ(read->process, 7);
  EXPECT_EQ(read->at, 20ms);
  EXPECT_EQ(read->event, "mark");
  EXPECT_EQ(read->number("heap"), 4096);
  EXPECT_EQ(read->number("threads"), 0);
  EXPECT_EQ(read->text("threads"), "");
}

TEST(WhatIsNoObservation, IsNotRead) {
  for (const char* const line : {"", "x 1 mark", "1 x mark", "1 2", "1 2 ", "1 2 mark field", "1 2 mark a=%",
                                 "1 2 mark a=%4", "1 2 mark a=%zz"}) {
    EXPECT_FALSE(parseObservation(line)) << line;
  }
}
