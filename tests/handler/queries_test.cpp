// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "handler/handler_test.h"

namespace tarn::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;
using testing::UnorderedElementsAre;

using AServiceQuery = HandlerTest;

TEST_F(AServiceQuery, ForTheEnabledStatePassesTheAnswerThrough) {
  EXPECT_TRUE(Handler::isDlpuEnabled());
  vod::host::setEnabled(false);
  EXPECT_FALSE(Handler::isDlpuEnabled());
}

TEST_F(AServiceQuery, ForTheChannelsGivesTheirNumbers) {
  vod::host::setChannelCounts(8, 3);
  EXPECT_EQ(Handler::getNumberOfChannels(), 8U);
  EXPECT_EQ(Handler::getNumberOfSimultaneousChannels(), 3U);
}

TEST_F(AServiceQuery, ForTheChannelsGivesZeroWithoutALogLineWhenThereAreNone) {
  vod::host::setChannelCounts(0, 0);
  EXPECT_EQ(Handler::getNumberOfChannels(), 0U);
  EXPECT_EQ(Handler::getNumberOfSimultaneousChannels(), 0U);
  EXPECT_THAT(log_.lines(), IsEmpty());
}

TEST_F(AServiceQuery, ForTheChannelsThatFailsGivesZeroAndLogsAnError) {
  vod::host::plan(Fault(Function::GetNbrChannels).failsWith(1));
  EXPECT_EQ(Handler::getNumberOfChannels(), 0U);
  EXPECT_THAT(log_.lines(), ElementsAre(LogLine{
                                LOG_ERR, "Unable to get number of channels from video_object_detection_subscriber\n"}));
}

TEST_F(AServiceQuery, ForTheSimultaneousChannelsThatFailsGivesZeroAndLogsAnError) {
  vod::host::plan(Fault(Function::GetNbrChannelsSimultaneously).failsWith(1));
  EXPECT_EQ(Handler::getNumberOfSimultaneousChannels(), 0U);
  EXPECT_THAT(log_.lines(),
              ElementsAre(LogLine{
                  LOG_ERR, "Unable to get number of simultaneous channels from video_object_detection_subscriber\n"}));
}

TEST_F(AServiceQuery, ForTheVersionJoinsMajorAndMinor) {
  vod::host::setVersion(1, 4);
  EXPECT_EQ(Handler::getServiceVersion(), "1.4");
  vod::host::setVersion(2, 0);
  EXPECT_EQ(Handler::getServiceVersion(), "2.0");
}

TEST_F(AServiceQuery, ForTheVersionThatFailsGivesAnEmptyTextAndLogsTheResult) {
  vod::host::plan(Fault(Function::GetVersion).failsWith(-3));
  EXPECT_EQ(Handler::getServiceVersion(), "");
  EXPECT_THAT(log_.lines(), ElementsAre(LogLine{LOG_ERR, "Failed to get the version of the vod lib: -3\n"}));
}

using ADetectorQuery = HandlerTest;

TEST_F(ADetectorQuery, OfACameraThatIsNotSetUpAsksThroughATemporarySubscriber) {
  EXPECT_EQ(Handler::getDetectorInformation(2).getClassifications().getClassNames(),
            (std::set<std::string>{"bus", "car", "human"}));
  EXPECT_THAT(vod::host::journal(), ElementsAre("create(channel=1)", "get_information(#1)", "delete(#1)"));
  EXPECT_EQ(vod::host::calls().front().userData, nullptr);
}

TEST_F(ADetectorQuery, OfAnActiveCameraAsksThroughItsOwnSubscriber) {
  setUp(1);
  vod::host::clearJournal();
  Handler::getDetectorInformation(1);
  EXPECT_THAT(vod::host::journal(), ElementsAre("get_information(#2)"));
}

TEST_F(ADetectorQuery, IgnoresThatTheTemporarySubscriberCannotBeDeleted) {
  vod::host::plan(Fault(Function::Delete).failsWith(1));
  EXPECT_FALSE(Handler::getDetectorInformation(1).getClassifications().isEmpty());
  EXPECT_THAT(log_.lines(), IsEmpty());
}

TEST_F(ADetectorQuery, ThrowsWhenNoSubscriberCanBeCreated) {
  vod::host::plan(Fault(Function::Create).always().failsWith(1));
  const auto throws = [](auto&& query) {
    try {
      query();
    } catch (const std::runtime_error& failure) {
      return std::string(failure.what());
    }
    return std::string("nothing");
  };
  const std::string text = "Failed to create subscription to vod.";
  EXPECT_EQ(throws([] { Handler::getDetectorInformation(1); }), text);
  EXPECT_EQ(throws([] { VOD::getDetectorInformation(); }), text);
  EXPECT_EQ(throws([] { Handler::getSupportedClasses(); }), text);
  EXPECT_THAT(log_.lines(), IsEmpty());
}

TEST_F(ADetectorQuery, ThatIsNotAnsweredDescribesAnEmptyMessageAndWarns) {
  vod::host::plan(Fault(Function::GetInformation).failsWith(1));
  const VOD::DetectorInformation information = Handler::getDetectorInformation(2);
  EXPECT_EQ(information.getCameraNbr(), 1);
  EXPECT_TRUE(information.getClassifications().isEmpty());
  EXPECT_THAT(log_.lines(), ElementsAre(LogLine{LOG_WARNING, "Couldn't read detector information\n"}));
}

TEST_F(ADetectorQuery, WithoutACameraIsForCameraOne) {
  vod::host::channel(1).detectorInformation("");
  EXPECT_EQ(VOD::getDetectorInformation(), Handler::getDetectorInformation(1));
  EXPECT_NE(VOD::getDetectorInformation(), Handler::getDetectorInformation(2));
}

TEST_F(ADetectorQuery, ForTheClassesIsForCameraOne) {
  vod::host::channel(1).detectorInformation("");
  EXPECT_EQ(Handler::getSupportedClasses(), (std::set<std::string>{"bus", "car", "human"}));
}

void askTwice() {
  const auto attributes = Handler::getSupportedAttributes();
  EXPECT_THAT(attributes, UnorderedElementsAre(Pair("colour", ElementsAre("blue", "red")),
                                               Pair("hat", ElementsAre("none")), Pair("mood", IsEmpty())));
  const auto calls = vod::host::journal();
  EXPECT_THAT(calls, ElementsAre("create(channel=0)", "get_information(#1)", "delete(#1)"));
  EXPECT_EQ(Handler::getSupportedAttributes(), attributes);
  EXPECT_EQ(vod::host::journal(), calls) << "a second call reads nothing";
  std::exit(testing::Test::HasFailure() ? 1 : 0);  // an orderly end, with which figures of coverage are written
}

TEST_F(AFreshProcess, ReadsTheAttributesOfCameraOneOnce) {
  expectWell(askTwice);
}

void askADetectorWithoutValues() {
  ::VOD::DetectorInformation information;
  information.add_attribute_types()->set_name("mood");
  vod::host::channel(0).detectorInformation(information.SerializeAsString());
  EXPECT_THAT(Handler::getSupportedAttributes(), ElementsAre(Pair("mood", IsEmpty())));
  EXPECT_THAT(Handler::getSupportedAttributes(), ElementsAre(Pair("mood", IsEmpty())));
  EXPECT_EQ(vod::host::journal().size(), 6U) << "asked again each time";
}

TEST_F(AFreshProcess, AsksADetectorWhoseAttributesHaveNoValuesEachTime) {
  expectWell(askADetectorWithoutValues);
}

void askADetectorWithoutAttributes() {
  vod::host::channel(0).detectorInformation(::VOD::DetectorInformation().SerializeAsString());
  EXPECT_THAT(Handler::getSupportedAttributes(), IsEmpty());
  EXPECT_THAT(Handler::getSupportedAttributes(), IsEmpty());
  EXPECT_EQ(vod::host::journal().size(), 6U) << "asked again each time";
  std::exit(testing::Test::HasFailure() ? 1 : 0);  // as above
}

TEST_F(AFreshProcess, AsksADetectorWithoutAttributesEachTime) {
  expectWell(askADetectorWithoutAttributes);
}

void askWhileTheServiceIsDown() {
  vod::host::takeServiceDown();
  try {
    Handler::getSupportedAttributes();
    ADD_FAILURE() << "nothing was thrown";
  } catch (const std::runtime_error& failure) {
    EXPECT_STREQ(failure.what(), "Failed to create subscription to vod.");
  }
  vod::host::bringServiceUp();
  EXPECT_EQ(Handler::getSupportedAttributes().size(), 3U);
}

TEST_F(AFreshProcess, ThrowsWhenTheAttributesCannotBeReadAndReadsThemLater) {
  expectWell(askWhileTheServiceIsDown);
}

/** About 1 MiB of attribute types with one value each, whose ids are multiples of a number. */
::VOD::DetectorInformation largeDetector(std::uint32_t stride) {
  ::VOD::DetectorInformation information;
  constexpr std::uint32_t types = 40000;
  for (std::uint32_t number = 0; number < types; ++number) {
    ::VOD::AttributeType& type = *information.add_attribute_types();
    type.set_id(number * stride);
    type.set_name(std::to_string(number));
    ::VOD::AttributeClass& value = *type.add_attribute_classes();
    value.set_id(number);
    value.set_name("v");
  }
  return information;
}

template <std::uint32_t stride>
void askALargeDetector() {
  const ::VOD::DetectorInformation information = largeDetector(stride);
  vod::host::channel(0).detectorInformation(information.SerializeAsString());
  const auto attributes = Handler::getSupportedAttributes();
  EXPECT_EQ(attributes.size(), static_cast<std::size_t>(information.attribute_types_size()));
  for (const auto& [name, values] : attributes) {
    ASSERT_THAT(values, ElementsAre("v")) << name;
  }
}

TEST_F(AFreshProcess, ListsTheAttributesOfALargeDetector) {
  expectWell(askALargeDetector<1>);
}

TEST_F(AFreshProcess, ListsTheAttributesOfALargeDetectorWhoseIdsLieFarApart) {
  expectWell(askALargeDetector<0x10001>);
}

using TheAttributesOfCameraOne = HandlerTest;

TEST_F(TheAttributesOfCameraOne, AreThoseOfItsLastSubscription) {
  setUp(1);
  ::VOD::DetectorInformation changed;
  changed.add_attribute_types()->set_name("beard");
  vod::host::channel(0).detectorInformation(changed.SerializeAsString());
  EXPECT_EQ(Handler::getSupportedAttributes().count("colour"), 1U) << "answered from what is known";
  Handler::teardown(1);
  EXPECT_EQ(Handler::getSupportedAttributes().count("colour"), 1U) << "teardown forgets nothing";
  setUp(1, {});
  const auto calls = vod::host::journal();
  EXPECT_THAT(Handler::getSupportedAttributes(), ElementsAre(Pair("beard", IsEmpty())));
  EXPECT_EQ(vod::host::journal(), calls) << "a detector that had values is not asked again";
}

TEST_F(TheAttributesOfCameraOne, AreGoneWhenReadingThemAgainFails) {
  setUp(1);
  Handler::teardown(1);
  vod::host::plan(Fault(Function::GetInformation).onCall(3).failsWith(1));
  setUp(1);
  EXPECT_THAT(Handler::getSupportedAttributes(), IsEmpty());
}

TEST_F(TheAttributesOfCameraOne, TakeTheLastOfTwoTypesThatShareAnId) {
  ::VOD::DetectorInformation information;
  for (const char* name : {"first", "second"}) {
    ::VOD::AttributeType& type = *information.add_attribute_types();
    type.set_id(4);
    type.set_name(name);
    ::VOD::AttributeClass& value = *type.add_attribute_classes();
    value.set_id(1);
    value.set_name(std::string(name) + " value");
  }
  vod::host::channel(0).detectorInformation(information.SerializeAsString());
  setUp(1, {});
  EXPECT_THAT(Handler::getSupportedAttributes(), ElementsAre(Pair("second", ElementsAre("second value"))));
}

TEST_F(TheAttributesOfCameraOne, TakeTheValuesOfTheHigherIdWhenTwoTypesShareAName) {
  ::VOD::DetectorInformation information;
  for (const std::uint32_t id : {0x80000000U, 9U}) {  // compared as unsigned numbers
    ::VOD::AttributeType& type = *information.add_attribute_types();
    type.set_id(id);
    type.set_name("colour");
    type.add_attribute_classes()->set_name(id == 9 ? "low" : "high");
  }
  vod::host::channel(0).detectorInformation(information.SerializeAsString());
  setUp(1, {});
  EXPECT_THAT(Handler::getSupportedAttributes(), ElementsAre(Pair("colour", ElementsAre("high"))));
}

}  // namespace
}  // namespace tarn::test
