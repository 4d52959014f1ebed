// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

// What applications get wrong and what services do to them: a camera reports each of it by an exception, its state and
// reason, or its counts. documented_mistakes_test.cpp sees that nothing that the documents list is left out.

#include "camera/camera_test.h"
#include "support/scene_builder.h"

#include <cstdlib>
#include <memory>
#include <new>
#include <optional>
#include <stdexcept>
#include <system_error>
#include <utility>

namespace tarn::test {
namespace {

using testing::AllOf;
using testing::Contains;
using testing::Each;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

using AMistake = CameraTest;

TEST_F(AMistake, OfAnEmptyCallbackIsAnError) {
  EXPECT_THROW(TestCamera(1, people(), nullptr), std::invalid_argument);
}

TEST_F(AMistake, OfANumberBelowOneIsAnError) {
  EXPECT_THROW(TestCamera(0, people(), camera_), std::invalid_argument);
  EXPECT_THROW(TestCamera(-1, people(), camera_), std::invalid_argument);
}

TEST_F(AMistake, OfAClassThatOnlyTheDetectorOfCameraOneKnowsIsRefused) {
  ::VOD::DetectorInformation information;
  information.add_object_classes()->set_name("dog");
  vod::host::channel(1).detectorInformation(information.SerializeAsString());
  const TestCamera camera(2, people(), camera_);
  EXPECT_EQ(camera.status().state, CameraState::Refused);
  EXPECT_EQ(camera.status().reason, "the detector does not know 'human'; it knows 'dog'");
}

TEST_F(AMistake, OfAMissingRecordingIsReportedAsAServiceThatDoesNotAnswer) {
  ::setenv("TARNVOD_HOST_RECORDINGS", "/nowhere", 1);
  vod::host::reset();
  testing::internal::CaptureStderr();
  {
    const TestCamera camera(1, people(), camera_);
    EXPECT_EQ(camera.status().state, CameraState::Waiting);
    EXPECT_EQ(camera.status().reason, "the service does not answer");
  }
  EXPECT_THAT(testing::internal::GetCapturedStderr(), HasSubstr("/nowhere"));
  ::unsetenv("TARNVOD_HOST_RECORDINGS");
  vod::host::reset();
}

/** A call of the set-up, which fails each time. */
class ASetUpCall : public CameraTest, public testing::WithParamInterface<std::pair<Function, const char*>> {};

TEST_P(ASetUpCall, ThatFailsIsReportedAndTheLogSaysWhich) {
  const auto& [function, line] = GetParam();
  vod::host::plan(Fault(function).always().failsWith(1));
  const TestCamera camera(1, {{"human"}, VOD::VodChannelConfiguration{0, 0, 1, 1}}, camera_);
  EXPECT_EQ(camera.status().state, CameraState::Waiting);
  EXPECT_EQ(camera.status().reason,
            "the service refuses the subscription with its region of interest (it allows 2 at a time); the system log "
            "says why");
  EXPECT_THAT(logTexts(), Contains(HasSubstr(line)));
  vod::host::liftAllFaults();
  passWithFrames(1s);
  EXPECT_EQ(camera.status().state, CameraState::Receiving);
}

INSTANTIATE_TEST_SUITE_P(
    OfEachKind, ASetUpCall,
    testing::Values(std::pair(Function::SetGetDetectionCallback, "Failed to set callback for reading data on vod"),
                    std::pair(Function::SetTeardownCallback, "Failed to set callback for teardown on vod"),
                    std::pair(Function::SetReceiveEmptyHits, "Failed to set property 'recieve_empty' on vod."),
                    std::pair(Function::SetChannelConfiguration, "Failed to set channel configuration on vod."),
                    std::pair(Function::UseChannelConfiguration, "Failed to enable channel configuration on vod."),
                    std::pair(Function::Subscribe, "Failed to subscribe to vod data.")));

using AServiceThatCannotBeCreated = CameraTest;

TEST_F(AServiceThatCannotBeCreated, DoesNotAnswerForItsLastCameraEither) {
  vod::host::plan(Fault(Function::Create).always().failsWith(1));
  const TestCamera camera(2, people(), camera_);
  EXPECT_EQ(camera.status().state, CameraState::Waiting);
  EXPECT_EQ(camera.status().reason, "the service does not answer");
}

using ADetectorThatIsNotAMessage = CameraTest;

TEST_F(ADetectorThatIsNotAMessage, IsTakenForNoAnswer) {
  vod::host::channel(0).detectorInformation("\xff\xff garbage");
  const TestCamera named(1, people(), camera_);
  EXPECT_EQ(named.status().state, CameraState::Waiting);
  EXPECT_EQ(named.status().reason, "the service does not answer");
}

/** One that copies its callback, which throws. */
class ASetUpThatThrows : public CameraTest {
 protected:
  template <typename Exception>
  struct Thrower {
    Exception exception;
    bool* isArmed;

    Thrower(Exception thrown, bool* armed) : exception(std::move(thrown)), isArmed(armed) {}
    Thrower(const Thrower& other) : exception(other.exception), isArmed(other.isArmed) {
      if (*isArmed) {
        throw exception;
      }
    }
    void operator()(std::unique_ptr<VOD::DetectionData> /*frame*/, int /*camera*/) const {}
  };

  template <typename Exception>
  VOD::detail::SetupOutcome outcomeOf(Exception exception) {
    bool isArmed = false;
    const VOD::DetectionCallback callback = Thrower<Exception>(std::move(exception), &isArmed);
    isArmed = true;
    return VOD::detail::CameraSetup(1, {"human"}, {}).attempt(callback, VOD::detail::Existing::End);
  }
};

TEST_F(ASetUpThatThrows, IsReportedWithItsText) {
  const auto outcome = outcomeOf(std::system_error(std::make_error_code(std::errc::invalid_argument)));
  EXPECT_EQ(outcome.state, CameraState::Waiting);
  EXPECT_EQ(outcome.reason, "the set-up failed: Invalid argument");
}

TEST_F(ASetUpThatThrows, ForWantOfMemoryIsReported) {
  const auto outcome = outcomeOf(std::bad_alloc());
  EXPECT_EQ(outcome.state, CameraState::Waiting);
  EXPECT_EQ(outcome.reason, "out of memory");
}

/** A renewal of a set-up, while the subscription still exists. */
class ARenewalThatFails : public CameraTest {
 protected:
  ARenewalThatFails() {
    deliver();
    vod::host::plan(Fault(Function::GetInformation).always().failsWith(1));
    pass(3s);
  }

  std::optional<TestCamera> subscribed_{std::in_place, 1, people(), camera_};
};

TEST_F(ARenewalThatFails, IsReported) {
  EXPECT_EQ(subscribed_->status().reason, "the service does not answer");
  EXPECT_THAT(camera_.takeStates(), ElementsAre(CameraState::Receiving, CameraState::Silent, CameraState::Waiting));
}

TEST_F(ARenewalThatFails, KeepsTheClassesAndTheCallback) {
  startRetryThread();
  vod::host::liftAllFaults();
  passWithFrames(2s);
  EXPECT_EQ(subscribed_->status().state, CameraState::Receiving);
  EXPECT_THAT(camera_.takeFrames(), AllOf(Not(IsEmpty()), Each(ElementsAre("human"))));
}

TEST_F(ARenewalThatFails, LeavesNothingWhenTheCameraEnds) {
  subscribed_.reset();
  EXPECT_THAT(vod::host::channel(0).subscriptions(), IsEmpty());
  EXPECT_EQ(vod::host::liveSubscribers(), 0);
}

/** A camera whose detector gets a name for an attribute after it was asked. */
class AnAttributeWithoutAName : public CameraTest {
 protected:
  void deliverIt() {
    ::VOD::Scene scene;
    addAttribute(addDetection(scene, 1), 42);
    vod::host::channel(0).deliverScene(scene.SerializeAsString());
  }

  std::vector<VOD::Attribute> attributes_;
};

TEST_F(AnAttributeWithoutAName, IsLoggedUntilTheDetectorIsAskedAgainAfterASilence) {
  const TestCamera camera(1, people(), [this](auto frame) { attributes_ = frame->detections.at(0).attributes; });
  deliverIt();
  EXPECT_THAT(logTexts(), ElementsAre("Missing vod attribute string for attribute type id 42\n"));
  EXPECT_THAT(attributes_, IsEmpty());

  ::VOD::DetectorInformation information;
  information.ParseFromString(detectorBytes());
  ::VOD::AttributeType& type = *information.add_attribute_types();
  type.set_id(42);
  type.set_name("age");
  vod::host::channel(0).detectorInformation(information.SerializeAsString());
  dropSubscriptions();
  pass(1s);
  deliverIt();
  EXPECT_THAT(attributes_, ElementsAre(VOD::Attribute("age", std::nullopt, std::nullopt)));
}

using AFrameThatIsNotAMessage = CameraTest;

TEST_F(AFrameThatIsNotAMessage, IsDeliveredEmptyAndCounted) {
  const TestCamera camera(1, people(), camera_);
  vod::host::channel(0).deliverScene("\xff\xff garbage");
  EXPECT_THAT(camera_.takeFrames(), ElementsAre(IsEmpty()));
  EXPECT_EQ(camera.status().framesReceived, 1U);
}

using AFrameCallback = CameraTest;

TEST_F(AFrameCallback, IsCalledItselfAndNotACopy) {
  int last = 0;
  const TestCamera camera(1, people(), [&last, calls = 0](auto) mutable { last = ++calls; });
  deliver();
  deliver();
  EXPECT_EQ(last, 2);
}

using AnUpdateThroughTheHandler = CameraTest;

TEST_F(AnUpdateThroughTheHandler, IsReportedAsASilenceAndItsRegionStays) {
  const TestCamera camera(1, {{"human"}, VOD::VodChannelConfiguration{0, 0, 1, 1}}, camera_);
  deliver();
  vod::host::clearJournal();
  setUp(1, {"car"}, VOD::VodChannelConfiguration{0, 0, 0.5F, 1});
  pass(1s);
  deliver();
  SteeredTime::settle();
  EXPECT_THAT(vod::host::journal(), Not(Contains(StartsWith("set_channel_configuration"))));
  EXPECT_THAT(camera_.takeStates(), ElementsAre(CameraState::Receiving, CameraState::Silent, CameraState::Receiving));
}

/** Ends a process of its own in an orderly way; the death test needs a program without other threads. */
class TheEndOfAProcess : public CameraTest {
 protected:
  TheEndOfAProcess() { GTEST_FLAG_SET(death_test_style, "threadsafe"); }
};

TEST_F(TheEndOfAProcess, AfterACameraNeedsNoDeinitialize) {
  EXPECT_EXIT(
      {
        { const TestCamera camera(1, people(), camera_); }
        std::exit(0);
      },
      testing::ExitedWithCode(0), "");
}

TEST_F(TheEndOfAProcess, WithACameraThatNobodyEndedIsNotAnAbort) {
  EXPECT_EXIT(
      {
        // Never destroyed.
        new VOD::Camera(1, {"human"}, [](auto) {});
        std::exit(0);
      },
      testing::ExitedWithCode(0), "");
}

}  // namespace
}  // namespace tarn::test
