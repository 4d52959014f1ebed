// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "base/text.h"

#include "drawing/svg.h"
#include "records/json.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <clocale>
#include <limits>

using namespace tarn::command;

namespace {

class Text : public testing::Test {
 protected:
  Text() { std::setlocale(LC_CTYPE, "C.UTF-8"); }
};

TEST_F(Text, ThatIsPrintableStaysAsItIs) {
  EXPECT_EQ(printable("Grün 車 🚗"), "Grün 車 🚗");
}

TEST_F(Text, LosesControlCharacters) {
  EXPECT_EQ(printable("a\x1b[31m\n\x7F\xC2\x9B"), "a\uFFFD[31m\uFFFD\uFFFD\uFFFD");
}

TEST_F(Text, LosesBytesThatAreNotUtf8) {
  EXPECT_EQ(printable("\xFFx"), "\uFFFDx");
  EXPECT_EQ(printable("x\xE8\xBB"), "x\uFFFD\uFFFD");          // cut off
  EXPECT_EQ(printable("\xC0\xAF"), "\uFFFD\uFFFD");            // overlong
  EXPECT_EQ(printable("\xED\xA0\x80"), "\uFFFD\uFFFD\uFFFD");  // half of a surrogate pair
}

TEST_F(Text, IsAsWideAsItsCharacters) {
  EXPECT_EQ(displayWidth("grün"), 4U);
  EXPECT_EQ(displayWidth("車"), 2U);
}

TEST_F(Text, IsCutBetweenCharacters) {
  EXPECT_EQ(cut("grüner", 4), "grü…");
  EXPECT_EQ(cut("車車車", 4), "車…");
  EXPECT_EQ(cut("four", 4), "four");
  EXPECT_EQ(cut("four", 0), "");
}

TEST_F(Text, FillsItsColumns) {
  EXPECT_EQ(fitted("ü", 3), "ü  ");
  EXPECT_EQ(fittedRight("ü", 3), "  ü");
}

TEST_F(Text, OfAFloatReadsBackAsTheSame) {
  for (const float number : {0.1F, 1.0F / 3, std::numeric_limits<float>::denorm_min(), 3.4e38F}) {
    EXPECT_EQ(std::strtof(shortest(number).c_str(), nullptr), number);
  }
  EXPECT_EQ(shortest(0.1F), "0.1");
}

TEST_F(Text, OfATimeIsInMinutesAndSeconds) {
  EXPECT_EQ(clockText(0), "0:00.000");
  EXPECT_EQ(clockText(67'250'999), "1:07.250");
  EXPECT_EQ(clockText(7'267'050'000), "2:01:07.050");
}

TEST_F(Text, OfASizeIsInTheLargestUnitThatItReaches) {
  EXPECT_EQ(byteSize(999), "999 B");
  EXPECT_EQ(byteSize(1'000), "1.0 kB");
  EXPECT_EQ(byteSize(1'000'000), "1.0 MB");
  EXPECT_EQ(byteSize(999'900'000), "999.9 MB");
  EXPECT_EQ(byteSize(1'000'000'000), "1.0 GB");
}

TEST_F(Text, IsFoldedAtSpaces) {
  EXPECT_EQ(folded("one two three", 80, 2), "one two three");
  EXPECT_EQ(folded("one two three", 7, 2), "one two\n  three");
  EXPECT_EQ(folded("label  incomprehensible  x", 10, 2), "label\n  incomprehensible\n  x");
}

TEST_F(Text, InAsciiKeepsItsColumns) {
  EXPECT_EQ(toAscii("━━· grün 車…"), "==. gr?n ??.");
}

TEST_F(Text, OfJsonHasNoControlCharacters) {
  EXPECT_EQ(oneLine(Json("a\u0080\u009Fb\x7F\u00A0\x1B")), "\"a\\u0080\\u009fb\\u007f\u00A0\\u001b\"\n");
}

TEST_F(Text, OfACountAgreesWithItsNumber) {
  EXPECT_EQ(counted(1, "frame"), "1 frame");
  EXPECT_EQ(counted(0, "frame"), "0 frames");
}

TEST_F(Text, InAPictureIsWellFormed) {
  EXPECT_EQ(svg::escaped("<&>'\"\xEF\xBF\xBF"), "&lt;&amp;&gt;&#39;&quot;\uFFFD");
}

}  // namespace
