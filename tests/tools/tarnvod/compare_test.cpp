// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "recordings/assignment.h"
#include "recordings/class_comparison.h"
#include "situations.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <recording/recording_writer.h>

#include <algorithm>
#include <filesystem>
#include <numeric>
#include <string>
#include <vector>

using nlohmann::json;
using tarn::command::bestAssignment;
using tarn::command::Box;
using tarn::command::ClassComparison;
using tarn::command::GainMatrix;
using tarn::command::overlap;
using tarn::command::SeenObject;
using tarn::command::TrackingFigures;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

namespace {

/** An object that is one wide and one high, with its left edge here. */
SeenObject object(std::uint32_t id, double left) {
  return {id, {left, 0, left + 1, 1}};
}

struct Frame {
  std::vector<SeenObject> reference;
  std::vector<SeenObject> compared;
};

TrackingFigures figuresOf(const std::vector<Frame>& frames) {
  ClassComparison comparison(0.5);
  for (const Frame& frame : frames) {
    comparison.addFrame(frame.reference, frame.compared);
  }
  return comparison.figures();
}

TEST(TheOverlap, IsTheIntersectionByTheUnion) {
  const Box box{0, 0, 2, 2};
  EXPECT_DOUBLE_EQ(overlap(box, box), 1);
  EXPECT_DOUBLE_EQ(overlap(box, {1, 0, 3, 2}), 1.0 / 3);
  EXPECT_DOUBLE_EQ(overlap(box, {1, 1, 3, 3}), 1.0 / 7);
  EXPECT_DOUBLE_EQ(overlap(box, {2, 2, 3, 3}), 0);
  EXPECT_DOUBLE_EQ(overlap({1, 1, 1, 1}, {1, 1, 1, 1}), 1);
  EXPECT_DOUBLE_EQ(overlap({1, 1, 1, 1}, {2, 2, 2, 2}), 0);
}

TEST(TheBestAssignment, IsBetterThanTakingTheBestPairFirst) {
  EXPECT_THAT(bestAssignment({{10, 9}, {9, 0}}), UnorderedElementsAre(std::pair(0U, 1U), std::pair(1U, 0U)));
  EXPECT_THAT(bestAssignment({{0, 3, 1}}), UnorderedElementsAre(std::pair(0U, 1U)));
  EXPECT_THAT(bestAssignment({{0}, {3}, {1}}), UnorderedElementsAre(std::pair(1U, 0U)));
  EXPECT_THAT(bestAssignment({{0, 0}, {0, 0}}), IsEmpty());
  EXPECT_THAT(bestAssignment({}), IsEmpty());
}

TEST(TheBestAssignment, IsThatOfAllPermutations) {
  std::uint32_t state = 7;
  const auto random = [&state] {
    state = state * 1103515245U + 12345U;
    return static_cast<double>((state >> 16U) % 10U);
  };
  constexpr std::size_t size = 5;
  for (int trial = 0; trial < 100; ++trial) {
    GainMatrix gains(size, std::vector<double>(size));
    for (auto& row : gains) {
      std::generate(row.begin(), row.end(), random);
    }
    std::vector<std::size_t> columns(size);
    std::iota(columns.begin(), columns.end(), 0U);
    double best = 0;
    do {
      double sum = 0;
      for (std::size_t row = 0; row < size; ++row) {
        sum += gains[row][columns[row]];
      }
      best = std::max(best, sum);
    } while (std::next_permutation(columns.begin(), columns.end()));
    double found = 0;
    for (const auto& [row, column] : bestAssignment(gains)) {
      found += gains[row][column];
    }
    EXPECT_DOUBLE_EQ(found, best);
  }
}

TEST(ATrackThatIsTheSame, HasNoErrors) {
  const TrackingFigures figures = figuresOf({{{object(1, 0)}, {object(9, 0)}}, {{object(1, 1)}, {object(9, 1)}}});
  EXPECT_EQ(figures.matched, 2U);
  EXPECT_TRUE(figures.areEqual());
  EXPECT_DOUBLE_EQ(*figures.mota(), 1);
  EXPECT_DOUBLE_EQ(*figures.idf1(), 1);
}

TEST(ATrackThatBreaksInTwo, CostsOneSwitchAndHalfOfItsIdentity) {
  const TrackingFigures figures = figuresOf({{{object(1, 0)}, {object(1, 0)}},
                                             {{object(1, 0)}, {object(1, 0)}},
                                             {{object(1, 0)}, {object(2, 0)}},
                                             {{object(1, 0)}, {object(2, 0)}}});
  EXPECT_EQ(figures.matched, 4U);
  EXPECT_EQ(figures.identitySwitches, 1U);
  EXPECT_DOUBLE_EQ(*figures.mota(), 1 - 1.0 / 4);
  EXPECT_DOUBLE_EQ(*figures.idf1(), 2 * 2.0 / (4 + 4));
  EXPECT_EQ(figures.referenceObjects, 1U);
  EXPECT_EQ(figures.comparedObjects, 2U);
}

TEST(AMissAndAFalseAlarm, CountOnceEach) {
  const TrackingFigures figures = figuresOf({{{object(1, 0)}, {object(4, 0)}},
                                             {{object(1, 0)}, {object(4, 0)}},
                                             {{object(1, 0)}, {}},
                                             {{object(1, 0)}, {object(4, 0)}},
                                             {{object(1, 0)}, {object(4, 0), object(5, 7)}}});
  EXPECT_EQ(figures.matched, 4U);
  EXPECT_EQ(figures.missed, 1U);
  EXPECT_EQ(figures.added, 1U);
  EXPECT_EQ(figures.identitySwitches, 0U);
  EXPECT_DOUBLE_EQ(*figures.mota(), 1 - 2.0 / 5);
  EXPECT_DOUBLE_EQ(*figures.idf1(), 2 * 4.0 / (5 + 5));
}

TEST(TwoTracksThatSwapTheirIds, CostTwoSwitches) {
  const Frame straight{{object(1, 0), object(2, 5)}, {object(1, 0), object(2, 5)}};
  const Frame swapped{{object(1, 0), object(2, 5)}, {object(2, 0), object(1, 5)}};
  const TrackingFigures figures = figuresOf({straight, straight, swapped, swapped});
  EXPECT_EQ(figures.matched, 8U);
  EXPECT_EQ(figures.identitySwitches, 2U);
  EXPECT_DOUBLE_EQ(*figures.mota(), 1 - 2.0 / 8);
  EXPECT_DOUBLE_EQ(*figures.idf1(), 2 * 4.0 / (8 + 8));
}

TEST(AMatch, StaysWhileItOverlapsEvenIfAnotherOverlapsMore) {
  const TrackingFigures figures =
      figuresOf({{{object(1, 0)}, {object(1, 0)}}, {{object(1, 0)}, {object(1, 0.3), object(2, 0)}}});
  EXPECT_EQ(figures.identitySwitches, 0U);
  EXPECT_EQ(figures.added, 1U);
}

TEST(AMatch, OfAsManyObjectsAsPossibleComesBeforeTheBestOverlap) {
  // Left to itself, the first would take the second's only partner.
  const TrackingFigures figures = figuresOf({{{object(1, 0), object(2, 0.3)}, {object(1, 0.1), object(2, -0.3)}}});
  EXPECT_EQ(figures.matched, 2U);
}

TEST(AReferenceWithoutObjects, HasNoMota) {
  const TrackingFigures figures = figuresOf({{{}, {object(1, 0)}}});
  EXPECT_EQ(figures.mota(), std::nullopt);
  EXPECT_DOUBLE_EQ(*figures.idf1(), 0);
  EXPECT_EQ(figuresOf({{}}).idf1(), std::nullopt);
}

class Compare : public test::TwoCameras {
 protected:
  /** The recording with some scenes changed. */
  template <typename Change>
  void makeOther(Change change) const {
    vod::recording::RecordingWriter writer(other, test::detector().SerializeAsString());
    for (int number = 0; number < test::framesInRecording; ++number) {
      ::VOD::Scene scene = test::scene(number);
      change(number, scene);
      writer.append(scene.SerializeAsString());
    }
  }

  const std::filesystem::path other = folder / "other";
};

TEST_F(Compare, OfARecordingWithItselfSucceeds) {
  const test::Outcome outcome = test::run({"compare", recording, recording});
  EXPECT_EQ(outcome.exitCode, 0) << outcome.errors;
  EXPECT_THAT(outcome.output, HasSubstr("frames               20 in both, 0 in A only, 0 in B only\n"));
  EXPECT_THAT(outcome.output, HasSubstr("1.0000    1.0000\n"));
}

TEST_F(Compare, CountsForEachClassWhatDiffers) {
  makeOther([](int number, ::VOD::Scene& scene) {
    if (number >= 15) {
      scene.mutable_detections(0)->set_object_id(8);
    }
    if (number == 4) {
      scene.mutable_detections()->RemoveLast();  // the car
    }
  });
  const test::Outcome outcome = test::run({"compare", recording, other, "--json"});

  EXPECT_EQ(outcome.exitCode, 1);
  EXPECT_EQ(outcome.errors, "tarnvod: " + other.string() + ": differs from " + recording.string() + '\n');
  const json comparison = json::parse(outcome.output);
  EXPECT_EQ(comparison["equal"], false);
  const json& human = comparison["classes"]["Human"];
  EXPECT_EQ(human["matched"], 20);
  EXPECT_EQ(human["identitySwitches"], 1);
  EXPECT_EQ(human["objectsDifference"], 1);
  EXPECT_NEAR(human["mota"].get<double>(), 0.95, 1e-6);
  EXPECT_NEAR(human["idf1"].get<double>(), 0.75, 1e-6);
  const json& car = comparison["classes"]["car"];
  EXPECT_EQ(car["missed"], 1);
  EXPECT_EQ(car["detectionsDifference"], -1);
  EXPECT_NEAR(car["mota"].get<double>(), 0.9, 1e-6);
  EXPECT_NEAR(car["idf1"].get<double>(), 2 * 9.0 / 19, 1e-6);
}

TEST_F(Compare, AcceptsWhatIsAsGoodAsAsked) {
  makeOther([](int number, ::VOD::Scene& scene) {
    if (number == 4) {
      scene.mutable_detections()->RemoveLast();
    }
  });
  EXPECT_EQ(test::run({"compare", recording, other, "--mota", "0.9", "--idf1", "0.9"}).exitCode, 0);
  const test::Outcome outcome = test::run({"compare", recording, other, "--mota", "0.99"});
  EXPECT_EQ(outcome.exitCode, 1);
  EXPECT_EQ(outcome.errors, "tarnvod: " + other.string() + ": MOTA is 0.9667, less than 0.9900\n");
}

TEST_F(Compare, PairsFramesByTheirTime) {
  // Two frames are missing, and the rest is a little late.
  {
    vod::recording::RecordingWriter writer(other, test::detector().SerializeAsString());
    for (int number = 0; number < test::framesInRecording; ++number) {
      ::VOD::Scene scene = test::scene(number);
      scene.set_timestamp(scene.timestamp() + (number > 0 ? 20'000 : 0));
      if (number != 5 && number != 6) {
        writer.append(scene.SerializeAsString());
      }
    }
  }
  const json comparison = json::parse(test::run({"compare", recording, other, "--json"}).output);
  EXPECT_EQ(comparison["frames"], (json{{"both", 18}, {"aOnly", 2}, {"bOnly", 0}}));
  EXPECT_EQ(comparison["classes"]["Human"]["missed"], 2);
  EXPECT_EQ(comparison["classes"]["Human"]["added"], 0);
}

TEST_F(Compare, OfADamagedRecordingFails) {
  makeOther([](int, ::VOD::Scene&) {});
  std::filesystem::resize_file(other / "scenes.pb", std::filesystem::file_size(other / "scenes.pb") - 2);
  const test::Outcome outcome = test::run({"compare", recording, other});
  EXPECT_EQ(outcome.exitCode, 1);
  EXPECT_TRUE(test::isOneLine(outcome.errors));
  EXPECT_THAT(outcome.errors, HasSubstr("cut off"));
}

}  // namespace
