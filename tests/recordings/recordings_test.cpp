// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

// The recordings that the host platform serves by default hold what docs/recordings.md says.

#include "recording/recording_reader.h"

#include <gmock/gmock.h>
#include <tarnvod/detector_information_file_reader.h>
#include <tarnvod/video_object_detection.pb.h>

#include <algorithm>
#include <filesystem>
#include <set>
#include <string>
#include <variant>
#include <vector>

using testing::AllOf;
using testing::Each;
using testing::ElementsAre;
using testing::Ge;
using testing::Gt;
using testing::Le;
using testing::Lt;
using testing::SizeIs;

namespace {

constexpr std::uint64_t microsecondsPerFrame = 100000;

struct Expected {
  std::string name;
  int camera = 0;
  std::size_t frames = 0;
};

class ACommittedRecording : public testing::TestWithParam<Expected> {
 protected:
  ACommittedRecording() {
    vod::recording::RecordingReader reader(folder);
    auto next = reader.next();
    for (; std::holds_alternative<vod::recording::RecordedScene>(next); next = reader.next()) {
      EXPECT_TRUE(scenes.emplace_back().ParseFromString(std::get<vod::recording::RecordedScene>(next).bytes));
    }
    EXPECT_TRUE(std::holds_alternative<vod::recording::EndOfRecording>(next));
  }

  std::vector<VOD::Detection> allDetections() const {
    std::vector<VOD::Detection> all;
    for (const VOD::Scene& scene : scenes) {
      all.insert(all.end(), scene.detections().begin(), scene.detections().end());
    }
    return all;
  }

  const std::filesystem::path folder = std::filesystem::path(RECORDINGS) / GetParam().name;
  std::vector<VOD::Scene> scenes;
};

}  // namespace

TEST_P(ACommittedRecording, DescribesADetectorOfPeopleAndTheirClothing) {
  tarn::VOD::DetectorInformationFileReader reader((folder / "detector-information.pb").string());
  const tarn::VOD::DetectorInformation information = reader.parseDetectorInformation();
  EXPECT_EQ(information.getCameraNbr(), GetParam().camera);
  EXPECT_EQ(information.getClassifications().getClassNames(), std::set<std::string>{"human"});
}

TEST_P(ACommittedRecording, HasTenFramesASecondFromItsStart) {
  ASSERT_THAT(scenes, SizeIs(GetParam().frames));
  for (std::size_t frame = 0; frame < scenes.size(); ++frame) {
    EXPECT_EQ(scenes[frame].timestamp(), frame * microsecondsPerFrame);
  }
}

TEST_P(ACommittedRecording, ShowsPeopleInNearlyEveryFrame) {
  const auto empty = std::count_if(scenes.begin(), scenes.end(), [](const auto& s) { return s.detections().empty(); });
  EXPECT_LT(empty, static_cast<std::ptrdiff_t>(scenes.size() / 20));
}

TEST_P(ACommittedRecording, HasBoxesOfTwoCornersWithinTheImage) {
  for (const VOD::Detection& person : allDetections()) {
    EXPECT_THAT((std::vector{person.coord_1(), person.coord_2(), person.coord_3(), person.coord_4()}),
                Each(AllOf(Ge(0.0F), Le(1.0F))));
    EXPECT_LT(person.coord_1(), person.coord_3());
    EXPECT_LT(person.coord_2(), person.coord_4());
  }
}

TEST_P(ACommittedRecording, HasScoresUpToAHundredAndAColourForEachGarment) {
  for (const VOD::Detection& person : allDetections()) {
    EXPECT_LE(person.score(), 100U);
    ASSERT_THAT(person.attributes(), SizeIs(2));
    for (const VOD::Attribute& attribute : person.attributes()) {
      EXPECT_THAT(attribute.class_(), AllOf(Gt(0U), Le(10U)));
      EXPECT_THAT(attribute.score(), AllOf(Gt(0U), Le(100U)));
    }
    ASSERT_THAT(person.classifications(), SizeIs(1));
    EXPECT_EQ(person.classifications(0).score(), person.score());
  }
}

TEST_P(ACommittedRecording, ShowsEachPersonOnceAFrameAndNoneThatIsGone) {
  std::set<std::uint32_t> gone;
  for (const VOD::Scene& scene : scenes) {
    std::set<std::uint32_t> seen;
    for (const VOD::Detection& person : scene.detections()) {
      EXPECT_TRUE(seen.insert(person.object_id()).second);
      EXPECT_EQ(gone.count(person.object_id()), 0U);
    }
    for (const VOD::Event& event : scene.events()) {
      const std::int32_t ended = event.action() == VOD::EVENT_DELETE ? event.object_id() : event.object_ids(0);
      EXPECT_TRUE(gone.insert(static_cast<std::uint32_t>(ended)).second);
    }
  }
}

TEST_P(ACommittedRecording, ConnectsAPersonInSightWithAnEarlierId) {
  int connections = 0;
  for (const VOD::Scene& scene : scenes) {
    for (const VOD::Event& event : scene.events()) {
      if (event.action() == VOD::EVENT_CONNECT) {
        ++connections;
        ASSERT_THAT(event.object_ids(), ElementsAre(Lt(event.object_id())));
        EXPECT_TRUE(std::any_of(scene.detections().begin(), scene.detections().end(), [&event](const auto& person) {
          return static_cast<std::int32_t>(person.object_id()) == event.object_id();
        }));
      }
    }
  }
  EXPECT_GT(connections, 0);
}

INSTANTIATE_TEST_SUITE_P(OfAStreet, ACommittedRecording,
                         testing::Values(Expected{"street", 1, 795}, Expected{"street-mirrored", 2, 400}),
                         [](const auto& tested) { return tested.param.name == "street" ? "AsFilmed" : "Mirrored"; });
