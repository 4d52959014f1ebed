// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "handler/handler_test.h"
#include "support/detector_builder.h"
#include "support/scene_builder.h"

namespace tarn::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

class ASubscribedCamera : public HandlerTest {
 protected:
  ASubscribedCamera() { setUp(1, {"human", "car"}); }

  /** The frame that a scene becomes. */
  VOD::DetectionData frameOf(const ::VOD::Scene& scene) {
    vod::host::channel(0).deliverScene(scene.SerializeAsString());
    return inbox_.last();
  }
};

TEST_F(ASubscribedCamera, DeliversEveryMemberOfADetection) {
  ::VOD::Scene scene;
  scene.set_timestamp(0xFFFFFFFFFFFFFFFF);
  ::VOD::Detection& detection = addDetection(scene, 5);
  setBox(detection, -0.5F, 0.25F, 1.5F, 1e30F);
  detection.set_object_id(4000000000);
  detection.set_score(77);
  detection.set_status(::VOD::Detection::TRACKED_CONFIDENT);
  addAttribute(detection, 10, 2, 9);
  addClassification(detection, 1, 8);

  const VOD::DetectionData expected(
      0xFFFFFFFFFFFFFFFF,
      {VOD::Data(-0.5F, 0.25F, 1.5F, 1e30F, 4000000000, "car", 77, VOD::DetectionStatus::TrackedConfident,
                 {VOD::Attribute("colour", "blue", 9)}, {VOD::Classification("human", 8)})},
      {});
  EXPECT_EQ(frameOf(scene), expected);
}

TEST_F(ASubscribedCamera, DeliversADetectionWithoutListsWithItsOtherMembers) {
  ::VOD::Scene scene;
  ::VOD::Detection& detection = addDetection(scene, 5);
  detection.set_coord_3(0.5F);
  detection.set_object_id(8);
  detection.set_score(9);
  EXPECT_THAT(frameOf(scene).detections,
              ElementsAre(VOD::Data(0, 0, 0.5F, 0, 8, "car", 9, VOD::DetectionStatus::Untracked, {}, {})));
}

TEST_F(ASubscribedCamera, DeliversAFrameWithOnlyATimestamp) {
  ::VOD::Scene scene;
  scene.set_timestamp(1234);
  EXPECT_EQ(frameOf(scene), VOD::DetectionData(1234, {}, {}));
}

TEST_F(ASubscribedCamera, DeliversAnAttributeWithAScoreButNoValue) {
  ::VOD::Scene scene;
  ::VOD::Detection& detection = addDetection(scene, 1);
  addAttribute(detection, 10, std::nullopt, 42);
  EXPECT_THAT(frameOf(scene).detections[0].attributes, ElementsAre(VOD::Attribute("colour", std::nullopt, 42)));
}

TEST_F(ASubscribedCamera, DeliversFramesOfAnySizeWhole) {
  for (const int detections : {1, 100, 1000, 30000}) {
    ::VOD::Scene scene;
    for (int object = 0; object < detections; ++object) {
      ::VOD::Detection& detection = addDetection(scene, object % 2 == 0 ? 1 : 5);
      detection.set_object_id(static_cast<std::uint32_t>(object));
      addAttribute(detection, 10, 1);
    }
    const VOD::DetectionData frame = frameOf(scene);
    ASSERT_THAT(frame.detections, SizeIs(static_cast<std::size_t>(detections)));
    EXPECT_EQ(frame.detections.back().objectId, static_cast<std::uint32_t>(detections - 1));
    EXPECT_EQ(frame.detections.back().className, detections % 2 == 0 ? "car" : "human");
    EXPECT_THAT(frame.detections.back().attributes, ElementsAre(VOD::Attribute("colour", "red", std::nullopt)));
  }
}

TEST_F(ASubscribedCamera, DeliversTheCameraNumberNotTheChannel) {
  vod::host::channel(0).deliverScene("");
  ASSERT_THAT(inbox_.received(), SizeIs(1));
  EXPECT_EQ(inbox_.received()[0].camera, 1);
}

TEST_F(ASubscribedCamera, DeliversOnlyRequestedClassesInTheirOrder) {
  EXPECT_THAT(classesAfter(1, sceneOf({7, 5, 99, 1, 5})), ElementsAre(ElementsAre("car", "human", "car")));
  EXPECT_THAT(log_.lines(), IsEmpty());
}

TEST_F(ASubscribedCamera, DeliversAnEmptyBufferAsAnEmptyFrame) {
  vod::host::channel(0).pushSceneOfLength("", 0);
  vod::host::drain();
  EXPECT_EQ(inbox_.last(), VOD::DetectionData(0, {}, {}));
}

TEST_F(ASubscribedCamera, DeliversWhatATruncatedBufferStillHolds) {
  const std::string whole = sceneOf({1, 5}, 1234);
  vod::host::channel(0).deliverScene(whole.substr(0, whole.size() - 1));
  EXPECT_EQ(inbox_.last().timestamp, 1234U);
  ASSERT_FALSE(inbox_.last().detections.empty());
  EXPECT_EQ(inbox_.last().detections[0].className, "human");
}

TEST_F(ASubscribedCamera, DeliversOneFrameForEveryPrefixOfAScene) {
  const std::string whole = sceneOf({1, 5, 1}, 1234);
  for (std::size_t length = 0; length <= whole.size(); ++length) {
    inbox_.clear();
    vod::host::channel(0).deliverScene(whole.substr(0, length));
    EXPECT_EQ(inbox_.size(), 1U) << length;
  }
}

TEST_F(ASubscribedCamera, DeliversANegativeLengthAsAnEmptyFrame) {
  vod::host::channel(0).pushSceneOfLength(sceneOf({1}), -1);
  vod::host::drain();
  EXPECT_EQ(inbox_.last(), VOD::DetectionData(0, {}, {}));
}

TEST_F(ASubscribedCamera, IgnoresANullBuffer) {
  vod::host::channel(0).pushNullScene();
  vod::host::channel(0).pushNullScene(5);
  vod::host::drain();
  EXPECT_EQ(inbox_.size(), 0U);
  EXPECT_THAT(log_.lines(), IsEmpty());
}

TEST_F(ASubscribedCamera, IgnoresNullUserData) {
  const std::uint8_t byte = 0;
  vod::host::registration(2).detection(&byte, 0, nullptr);
  EXPECT_EQ(inbox_.size(), 0U);
}

TEST_F(ASubscribedCamera, DropsAnAttributeWithoutATypeNameAndLogsIt) {
  ::VOD::Scene scene;
  ::VOD::Detection& detection = addDetection(scene, 1);
  addAttribute(detection, 42);
  addAttribute(detection, 10);
  addAttribute(detection, 42);
  EXPECT_THAT(frameOf(scene).detections[0].attributes,
              ElementsAre(VOD::Attribute("colour", std::nullopt, std::nullopt)));
  const LogLine line{LOG_ERR, "Missing vod attribute string for attribute type id 42\n"};
  EXPECT_THAT(log_.lines(), ElementsAre(line, line));
  frameOf(scene);
  EXPECT_EQ(log_.count(line), 4U) << "in every frame";
}

TEST_F(ASubscribedCamera, DropsAndLogsEachAttributeIfItsDetectorNeverNamedOne) {
  ::VOD::DetectorInformation detector;
  ASSERT_TRUE(detector.ParseFromString(detectorBytes()));
  detector.clear_attribute_types();
  vod::host::channel(8).detectorInformation(detector.SerializeAsString());
  setUp(9);
  ::VOD::Scene scene;
  addAttribute(addDetection(scene, 1), 10);
  vod::host::channel(8).deliverScene(scene.SerializeAsString());
  ASSERT_EQ(inbox_.last().detections.size(), 1U);
  EXPECT_THAT(inbox_.last().detections[0].attributes, IsEmpty());
  EXPECT_THAT(log_.lines(), ElementsAre(LogLine{LOG_ERR, "Missing vod attribute string for attribute type id 10\n"}));
}

TEST_F(ASubscribedCamera, LogsNothingOfTheAttributesOfAClassThatWasNotRequested) {
  ::VOD::Scene scene;
  ::VOD::Detection& detection = addDetection(scene, 7);
  addAttribute(detection, 42);
  EXPECT_THAT(frameOf(scene).detections, IsEmpty());
  EXPECT_THAT(log_.lines(), IsEmpty());
}

TEST_F(ASubscribedCamera, KeepsAnAttributeWhoseValueHasNoName) {
  ::VOD::Scene scene;
  ::VOD::Detection& detection = addDetection(scene, 1);
  addAttribute(detection, 10, 99);    // no such value
  addAttribute(detection, 20, 2, 0);  // a value of the other type
  EXPECT_THAT(frameOf(scene).detections[0].attributes, ElementsAre(VOD::Attribute("colour", std::nullopt, std::nullopt),
                                                                   VOD::Attribute("hat", std::nullopt, 0)));
  EXPECT_THAT(log_.lines(), IsEmpty());
}

TEST_F(ASubscribedCamera, DropsClassificationsWithoutClassWithoutScoreOrOfAClassThatWasNotRequested) {
  ::VOD::Scene scene;
  ::VOD::Detection& detection = addDetection(scene, 1);
  addClassification(detection, std::nullopt, 1);
  addClassification(detection, 1);
  addClassification(detection, 7, 1);  // not requested
  addClassification(detection, 5, 0);
  EXPECT_THAT(frameOf(scene).detections[0].classifications, ElementsAre(VOD::Classification("car", 0)));
  EXPECT_THAT(log_.lines(), IsEmpty());
}

TEST_F(ASubscribedCamera, TakesStatusesItDoesNotKnowForUntracked) {
  ::VOD::Scene scene;
  for (const int status : {0, 1, 2, 3, 7, -1}) {
    ::VOD::Detection& detection = addDetection(scene, 1);
    detection.set_status(static_cast<::VOD::Detection_DetectionStatus>(status));
  }
  std::vector<VOD::DetectionStatus> statuses;
  for (const VOD::Data& detection : frameOf(scene).detections) {
    statuses.push_back(detection.status);
  }
  using Status = VOD::DetectionStatus;
  EXPECT_THAT(statuses, ElementsAre(Status::Untracked, Status::TrackedUnconfident, Status::TrackedConfident,
                                    Status::Untracked, Status::Untracked, Status::Untracked));
}

TEST_F(ASubscribedCamera, DropsEventsOfAnUnknownAction) {
  ::VOD::Scene scene;
  for (const int action : {2, 0, -1, 1, 7}) {
    addEvent(scene, static_cast<::VOD::EventAction>(action), -100 - action, {200 + action});
  }
  EXPECT_THAT(frameOf(scene).events, ElementsAre(VOD::VodEvent(VOD::EventAction::Delete, -100, {200}),
                                                 VOD::VodEvent(VOD::EventAction::Connect, -101, {201})));
  EXPECT_THAT(log_.lines(), IsEmpty());
}

TEST_F(ASubscribedCamera, KeepsTheIdsOfAnEventInTheirOrderWithDuplicates) {
  ::VOD::Scene scene;
  addEvent(scene, ::VOD::EVENT_CONNECT, 0, {5, 3, -1, 5});
  EXPECT_THAT(frameOf(scene).events, ElementsAre(VOD::VodEvent(VOD::EventAction::Connect, 0, {5, 3, -1, 5})));
}

TEST_F(ASubscribedCamera, TakesAnEventWithoutAnActionForADelete) {
  ::VOD::Scene scene;
  scene.add_events()->set_object_id(3);
  EXPECT_THAT(frameOf(scene).events, ElementsAre(VOD::VodEvent(VOD::EventAction::Delete, 3, {})));
}

TEST_F(ASubscribedCamera, ReceivesFramesWithoutDetections) {
  vod::host::channel(0).pushScene("");
  vod::host::drain();
  EXPECT_EQ(inbox_.size(), 1U) << "empty hits are asked for";
}

TEST_F(ASubscribedCamera, WithoutClassesStillReceivesEvents) {
  setUp(1, {});
  ::VOD::Scene scene;
  addDetection(scene, 1);
  scene.add_events()->set_object_id(3);
  const VOD::DetectionData frame = frameOf(scene);
  EXPECT_THAT(frame.detections, IsEmpty());
  EXPECT_THAT(frame.events, SizeIs(1));
}

TEST_F(ASubscribedCamera, ComparesClassIdsAsSignedNumbers) {
  ::VOD::DetectorInformation information;
  addClass(information, 0xFFFFFFFE, "ghost");
  vod::host::channel(0).detectorInformation(information.SerializeAsString());
  setUp(1, {"ghost"});
  EXPECT_THAT(classesAfter(1, sceneOf({0xFFFFFFFE, 2})), ElementsAre(ElementsAre("ghost")));
}

TEST_F(ASubscribedCamera, DistinguishesAnAttributeWithoutAValueFromOneOfValueZero) {
  ::VOD::DetectorInformation information;
  ASSERT_TRUE(information.ParseFromString(detectorBytes()));
  information.mutable_attribute_types(0)->mutable_attribute_classes(0)->set_id(0);
  vod::host::channel(1).detectorInformation(information.SerializeAsString());
  setUp(2);
  ::VOD::Scene scene;
  ::VOD::Detection& detection = addDetection(scene, 1);
  addAttribute(detection, 10);
  addAttribute(detection, 10, 0);
  vod::host::channel(1).deliverScene(scene.SerializeAsString());
  EXPECT_THAT(inbox_.last().detections[0].attributes, ElementsAre(VOD::Attribute("colour", std::nullopt, std::nullopt),
                                                                  VOD::Attribute("colour", "red", std::nullopt)));
}

TEST_F(ASubscribedCamera, NamesTheValuesOfTwoTypesThatShareAnIdWithTheLastTypesName) {
  ::VOD::DetectorInformation information;
  ASSERT_TRUE(information.ParseFromString(detectorBytes()));
  ::VOD::AttributeType& type = *information.add_attribute_types();
  type.set_id(10);
  type.set_name("paint");
  vod::host::channel(1).detectorInformation(information.SerializeAsString());
  setUp(2);
  ::VOD::Scene scene;
  ::VOD::Detection& detection = addDetection(scene, 1);
  addAttribute(detection, 10, 1);
  addAttribute(detection, 10);
  vod::host::channel(1).deliverScene(scene.SerializeAsString());
  EXPECT_THAT(inbox_.last().detections[0].attributes, ElementsAre(VOD::Attribute("paint", "red", std::nullopt),
                                                                  VOD::Attribute("paint", std::nullopt, std::nullopt)));
}

TEST_F(ASubscribedCamera, NamesAttributesByItsOwnDetector) {
  ::VOD::DetectorInformation other;
  ASSERT_TRUE(other.ParseFromString(detectorBytes()));
  other.mutable_attribute_types(0)->set_name("paint");
  vod::host::channel(1).detectorInformation(other.SerializeAsString());
  setUp(2);
  ::VOD::Scene scene;
  addDetection(scene, 1);
  scene.mutable_detections(0)->add_attributes()->set_type(10);
  EXPECT_EQ(frameOf(scene).detections[0].attributes[0].typeName, "colour");
  vod::host::channel(1).deliverScene(scene.SerializeAsString());
  EXPECT_EQ(inbox_.last().detections[0].attributes[0].typeName, "paint");
}

TEST_F(ASubscribedCamera, CopiesTheCallableForEveryFrame) {
  std::vector<int> counts;
  Handler::setup(1, [&counts, count = 0](auto&&, int) mutable { counts.push_back(++count); }, {"human"});
  vod::host::channel(0).deliverScene("").deliverScene("");
  EXPECT_THAT(counts, ElementsAre(1, 1)) << "each frame meets the callable as it was set up";
}

TEST_F(ASubscribedCamera, GivesTheFrameToTheApplicationForGood) {
  std::unique_ptr<VOD::DetectionData> kept;
  Handler::setup(1, [&kept](auto frame, int) { kept = std::move(frame); }, {"human"});
  vod::host::channel(0).deliverScene(sceneOf({1}, 5));
  Handler::teardown(1);
  ASSERT_NE(kept, nullptr);
  EXPECT_EQ(kept->timestamp, 5U);
}

TEST_F(ASubscribedCamera, LetsAnExceptionOfTheCallbackPassAndGoesOn) {
  vod::host::catchCallbackExceptions(true);
  Handler::setup(1, [](auto&&, int) { throw std::logic_error("from the application"); }, {"human"});
  vod::host::channel(0).deliverScene(sceneOf({1}));
  EXPECT_EQ(vod::host::caughtCallbackExceptions(), 1);
  setUp(1);
  EXPECT_THAT(classesAfter(1, sceneOf({1})), ElementsAre(ElementsAre("human")));
}

TEST_F(ASubscribedCamera, ThatIsTornDownReceivesNothingMore) {
  const vod::host::Registration registration = vod::host::registration(2);
  Handler::teardown(1);
  const std::string scene = sceneOf({1});
  registration.detection(reinterpret_cast<const std::uint8_t*>(scene.data()), static_cast<std::int32_t>(scene.size()),
                         registration.userData);
  EXPECT_EQ(inbox_.size(), 0U);
  EXPECT_THAT(log_.lines(), IsEmpty());
}

}  // namespace
}  // namespace tarn::test
