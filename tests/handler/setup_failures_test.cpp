// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

// Every platform call of the set-up path fails once, at each of its places.

#include "handler/handler_test.h"

namespace tarn::test {
namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;

struct FailingCall {
  const char* name;
  Function function;
  int call;
  std::vector<LogLine> log;
  std::vector<std::string> journal;  // all calls of the failing set-up
  bool keepsClasses;                 // whether the retry asks for the classes that the application wanted
};

void PrintTo(const FailingCall& failing, std::ostream* out) {
  *out << failing.name;
}

const std::vector<std::string> question = {"create(channel=0)", "get_information(#1)", "delete(#1)"};
const std::vector<std::string> cleanUp = {"unsubscribe(#2)", "delete(#2)"};

/** The calls of a set-up with a region, up to its N-th step after the question for the detector. */
std::vector<std::string> callsUpTo(std::size_t steps, const std::vector<std::string>& after = cleanUp) {
  const std::vector<std::string> all = {"create(channel=0)",
                                        "set_get_detection_callback(#2)",
                                        "set_teardown_callback(#2)",
                                        "set_receive_empty_hits(#2, true)",
                                        "set_channel_configuration(channel=0, roi=[0, 0, 1, 1])",
                                        "use_channel_configuration(#2, true)",
                                        "subscribe(#2)",
                                        "get_information(#2)",
                                        "create(channel=0)"};
  std::vector<std::string> calls = question;
  calls.insert(calls.end(), all.begin(), all.begin() + static_cast<std::ptrdiff_t>(steps));
  calls.insert(calls.end(), after.begin(), after.end());
  return calls;
}

class AFailingCall : public HandlerTest, public testing::WithParamInterface<FailingCall> {
 protected:
  bool setUpWithRegion() { return setUp(1, {"human"}, VOD::VodChannelConfiguration{0, 0, 1, 1}); }
};

TEST_P(AFailingCall, FailsTheSetUpAndParksTheCamera) {
  vod::host::plan(Fault(GetParam().function).onCall(GetParam().call).failsWith(7));
  EXPECT_FALSE(setUpWithRegion());
  EXPECT_THAT(log_.lines(), ElementsAreArray(GetParam().log));
  EXPECT_THAT(vod::host::journal(), ElementsAreArray(GetParam().journal));
  EXPECT_EQ(vod::host::liveSubscribers(), 0);

  retryOnce();
  const std::vector<std::string> expected =
      GetParam().keepsClasses ? std::vector<std::string>{"human"} : std::vector<std::string>{};
  EXPECT_THAT(classesAfter(1, sceneOf({1})), ElementsAre(expected));
  EXPECT_THAT(vod::host::journal(), testing::Contains("set_channel_configuration(channel=0, roi=[0, 0, 1, 1])"));
}

INSTANTIATE_TEST_SUITE_P(OfEachKind, AFailingCall,
                         testing::Values(FailingCall{"FirstCreate",
                                                     Function::Create,
                                                     1,
                                                     {{LOG_INFO, "Failed to create subscription to vod.\n"}},
                                                     {"create(channel=0)"},
                                                     false},
                                         FailingCall{"FirstGetInformation",
                                                     Function::GetInformation,
                                                     1,
                                                     {{LOG_WARNING, "Couldn't read detector information\n"},
                                                      {LOG_INFO, "Not all requested classes are supported\n"}},
                                                     question,
                                                     false},
                                         FailingCall{"SecondCreate",
                                                     Function::Create,
                                                     2,
                                                     {{LOG_INFO, "Failed to create subscription to vod.\n"}},
                                                     callsUpTo(1, {}),
                                                     true},
                                         FailingCall{"SetGetDetectionCallback",
                                                     Function::SetGetDetectionCallback,
                                                     1,
                                                     {{LOG_INFO, "Failed to set callback for reading data on vod\n"}},
                                                     callsUpTo(2),
                                                     true},
                                         FailingCall{"SetTeardownCallback",
                                                     Function::SetTeardownCallback,
                                                     1,
                                                     {{LOG_INFO, "Failed to set callback for teardown on vod\n"}},
                                                     callsUpTo(3),
                                                     true},
                                         FailingCall{"SetReceiveEmptyHits",
                                                     Function::SetReceiveEmptyHits,
                                                     1,
                                                     {{LOG_INFO, "Failed to set property 'recieve_empty' on vod.\n"}},
                                                     callsUpTo(4),
                                                     true},
                                         FailingCall{"SetChannelConfiguration",
                                                     Function::SetChannelConfiguration,
                                                     1,
                                                     {{LOG_INFO, "Failed to set channel configuration on vod.\n"}},
                                                     callsUpTo(5),
                                                     true},
                                         FailingCall{"UseChannelConfiguration",
                                                     Function::UseChannelConfiguration,
                                                     1,
                                                     {{LOG_INFO, "Failed to enable channel configuration on vod.\n"}},
                                                     callsUpTo(6),
                                                     true},
                                         FailingCall{"Subscribe",
                                                     Function::Subscribe,
                                                     1,
                                                     {{LOG_INFO, "Failed to subscribe to vod data.\n"}},
                                                     callsUpTo(7),
                                                     true},
                                         FailingCall{"ThirdCreate",
                                                     Function::Create,
                                                     3,
                                                     {{LOG_INFO, "Failed to create subscription to vod.\n"}},
                                                     callsUpTo(9),
                                                     true}),
                         [](const auto& instance) { return std::string(instance.param.name); });

using ASetUp = HandlerTest;

TEST_F(ASetUp, SucceedsWhenTheDetectorIsNotKnownAfterSubscribing) {
  vod::host::plan(Fault(Function::GetInformation).onCall(2).failsWith(7));
  EXPECT_TRUE(setUp(1));
  EXPECT_THAT(log_.lines(), ElementsAre(LogLine{LOG_WARNING, "Couldn't read detector information\n"}));
}

TEST_F(ASetUp, SucceedsWithoutAttributeNamesWhenTheDetectorDoesNotAnswer) {
  vod::host::plan(Fault(Function::GetInformation).onCall(3).failsWith(7));
  EXPECT_TRUE(setUp(1));
  EXPECT_THAT(log_.lines(), ElementsAre(LogLine{LOG_WARNING, "Couldn't read detector information\n"}));
  EXPECT_EQ(vod::host::liveSubscribers(), 1);
}

TEST_F(ASetUp, IgnoresThatTheFirstTemporarySubscriberCannotBeDeleted) {
  vod::host::plan(Fault(Function::Delete).onCall(1).failsWith(7));
  EXPECT_TRUE(setUp(1));
  EXPECT_THAT(log_.lines(), IsEmpty());
}

TEST_F(ASetUp, IgnoresThatTheSecondTemporarySubscriberCannotBeDeleted) {
  vod::host::plan(Fault(Function::Delete).onCall(2).failsWith(7));
  EXPECT_TRUE(setUp(1));
  EXPECT_THAT(log_.lines(), IsEmpty());
}

TEST_F(ASetUp, ThatFailsIgnoresThatItsCleanUpFailsToo) {
  vod::host::plan(Fault(Function::Subscribe).failsWith(7));
  vod::host::plan(Fault(Function::Unsubscribe).failsWith(7));
  vod::host::plan(Fault(Function::Delete).onCall(2).failsWith(7));
  EXPECT_FALSE(setUp(1));
  EXPECT_THAT(log_.lines(), ElementsAre(LogLine{LOG_INFO, "Failed to subscribe to vod data.\n"}));
  EXPECT_EQ(vod::host::liveSubscribers(), 0);
}

TEST_F(ASetUp, WhileTheServiceIsDownFailsAndIsRetried) {
  vod::host::takeServiceDown();
  EXPECT_FALSE(setUp(1));
  EXPECT_THAT(log_.lines(), ElementsAre(LogLine{LOG_INFO, "Failed to create subscription to vod.\n"}));
  vod::host::bringServiceUp();
  retryOnce();
  EXPECT_THAT(vod::host::channel(0).subscriptions(), testing::SizeIs(1));
}

class ARunOfFailures : public HandlerTest {
 protected:
  ARunOfFailures() { vod::host::plan(Fault(Function::Subscribe).always().failsWith(1)); }

  void failTimes(int times) {
    for (int attempt = 0; attempt < times; ++attempt) {
      EXPECT_FALSE(setUp(1 + attempt % 2));
    }
  }

  static LogLine failure(int priority) { return {priority, "Failed to subscribe to vod data.\n"}; }
};

TEST_F(ARunOfFailures, LogsTheFirstAndTheSixthOfSeven) {
  failTimes(5);
  EXPECT_THAT(log_.lines(), ElementsAre(failure(LOG_INFO)));
  failTimes(2);
  EXPECT_THAT(log_.lines(), ElementsAre(failure(LOG_INFO), failure(LOG_WARNING)));
}

TEST_F(ARunOfFailures, LogsEveryFifthAfterThat) {
  failTimes(10);
  EXPECT_THAT(log_.lines(), ElementsAre(failure(LOG_INFO), failure(LOG_WARNING)));
  failTimes(1);
  EXPECT_THAT(log_.lines(), ElementsAre(failure(LOG_INFO), failure(LOG_WARNING), failure(LOG_WARNING)));
  failTimes(5);
  EXPECT_EQ(log_.lines().size(), 4U);
}

TEST_F(ARunOfFailures, BeginsAgainAfterASuccess) {
  failTimes(3);
  vod::host::liftAllFaults();
  EXPECT_TRUE(setUp(1));
  Handler::teardown(1);
  vod::host::plan(Fault(Function::Subscribe).always().failsWith(1));
  failTimes(1);
  EXPECT_THAT(log_.lines(), ElementsAre(failure(LOG_INFO), failure(LOG_INFO)));
}

}  // namespace
}  // namespace tarn::test
