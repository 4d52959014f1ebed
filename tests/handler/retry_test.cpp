// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "handler/handler_test.h"

#include <stdexcept>
#include <thread>

namespace tarn::test {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

class TheRetryThread : public HandlerTest {
 protected:
  int failSubscribing() { return vod::host::plan(Fault(Function::Subscribe).always().failsWith(1)); }
};

TEST_F(TheRetryThread, RetriesAPendingCameraInItsFirstRound) {
  const int fault = failSubscribing();
  setUp(1);
  vod::host::lift(fault);
  retryOnce();
  EXPECT_THAT(vod::host::channel(0).subscriptions(), SizeIs(1));
}

TEST_F(TheRetryThread, RetriesInEveryRoundUntilItSucceeds) {
  const int fault = failSubscribing();
  setUp(1);
  retryOnce();
  sleep_.release();
  sleep_.waitUntilAsleep();
  EXPECT_THAT(vod::host::channel(0).subscriptions(), IsEmpty());
  vod::host::lift(fault);
  sleep_.release();
  sleep_.waitUntilAsleep();
  EXPECT_THAT(vod::host::channel(0).subscriptions(), SizeIs(1));

  vod::host::clearJournal();
  sleep_.release();
  sleep_.waitUntilAsleep();
  EXPECT_THAT(vod::host::journal(), IsEmpty()) << "nothing is pending any more";
}

TEST_F(TheRetryThread, CountsItsFailuresIntoTheRunOfFailures) {
  failSubscribing();
  setUp(1);
  setUp(2);
  retryOnce();
  sleep_.release();
  sleep_.waitUntilAsleep();
  const std::string text = "Failed to subscribe to vod data.\n";
  EXPECT_THAT(log_.lines(), ElementsAre(LogLine{LOG_INFO, text}, LogLine{LOG_WARNING, text}))
      << "six failures: two of set-ups, four of retries";
}

TEST_F(TheRetryThread, RetriesCamerasInAscendingOrder) {
  const int fault = failSubscribing();
  setUp(2);
  setUp(1);
  vod::host::lift(fault);
  vod::host::clearJournal();
  retryOnce();
  std::vector<int> channels;
  for (const vod::host::Call& call : vod::host::calls()) {
    if (call.function == Function::Create) {
      channels.push_back(*call.channel);
    }
  }
  EXPECT_THAT(channels, ElementsAre(0, 0, 0, 1, 1, 1));
}

TEST_F(TheRetryThread, GoesOnWithTheNextCameraWhenOneFails) {
  const int fault = failSubscribing();
  setUp(1);
  setUp(2);
  vod::host::lift(fault);
  vod::host::plan(Fault(Function::Subscribe).onCall(1).failsWith(1));
  retryOnce();
  EXPECT_THAT(vod::host::channel(0).subscriptions(), IsEmpty());
  EXPECT_THAT(vod::host::channel(1).subscriptions(), SizeIs(1));
}

TEST_F(TheRetryThread, SleepsForThePeriodBetweenTwoRounds) {
  Handler::initialize(17);
  EXPECT_EQ(sleep_.waitUntilAsleep(), 17s);
  sleep_.release();
  EXPECT_EQ(sleep_.waitUntilAsleep(), 17s);
}

TEST_F(TheRetryThread, SleepsOnForTheRemainingTimeAfterASignal) {
  failSubscribing();
  setUp(1);
  Handler::initialize(17);
  sleep_.waitUntilAsleep();
  vod::host::clearJournal();
  sleep_.interrupt(5s);
  EXPECT_EQ(sleep_.waitUntilAsleep(), 5s);
  EXPECT_THAT(vod::host::journal(), IsEmpty()) << "no round before its time";
}

TEST_F(TheRetryThread, KeepsItsPeriodWhenItIsStartedASecondTime) {
  Handler::initialize(17);
  sleep_.waitUntilAsleep();
  Handler::initialize(3);
  sleep_.release();
  EXPECT_EQ(sleep_.waitUntilAsleep(), 17s);
}

TEST_F(TheRetryThread, TakesANewPeriodAfterItWasStopped) {
  Handler::initialize(17);
  sleep_.waitUntilAsleep();
  sleep_.releaseAll();
  Handler::deinitialize();
  const std::size_t before = sleep_.requested().size();
  Handler::initialize(3);
  Handler::deinitialize();
  EXPECT_GE(sleep_.requested().size(), before);
  for (std::size_t i = before; i < sleep_.requested().size(); ++i) {
    EXPECT_EQ(sleep_.requested()[i], 3s);
  }
}

class APeriodWithoutPause : public TheRetryThread, public testing::WithParamInterface<int> {};

TEST_P(APeriodWithoutPause, RetriesWithoutSleeping) {
  failSubscribing();
  setUp(1);
  Handler::initialize(GetParam());
  vod::host::waitForReturned(Function::Subscribe, 50);
  Handler::deinitialize();
  EXPECT_THAT(sleep_.requested(), IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(OfAnyKind, APeriodWithoutPause, testing::Values(0, -1, -1000));

TEST_F(TheRetryThread, IsNotThereWithoutInitialize) {
  failSubscribing();
  setUp(1);
  vod::host::clearJournal();
  Handler::deinitialize();
  EXPECT_THAT(vod::host::journal(), IsEmpty());
  EXPECT_THAT(sleep_.requested(), IsEmpty());
}

TEST_F(TheRetryThread, LeavesSubscriptionsAndPendingCamerasAloneWhenItStops) {
  setUp(1);
  failSubscribing();
  setUp(2);
  retryOnce();
  sleep_.releaseAll();
  Handler::deinitialize();
  EXPECT_THAT(classesAfter(1, sceneOf({1})), ElementsAre(ElementsAre("human")));
  vod::host::liftAllFaults();
  Handler::initialize(0);
  vod::host::waitForCalls([](const auto&) { return !vod::host::channel(1).subscriptions().empty(); });
}

TEST_F(TheRetryThread, ReplacesARecordThatIsActiveAndPendingByAnUpdate) {
  setUp(1, {"human"});
  Inbox other;
  Handler::setup(1, other.callback(), {"unicorn"});
  vod::host::clearJournal();
  retryOnce();
  EXPECT_THAT(vod::host::journal(), ElementsAre("get_information(#2)"));
  vod::host::channel(0).deliverScene(sceneOf({1}));
  EXPECT_EQ(other.size(), 1U);
  EXPECT_EQ(inbox_.size(), 0U);
}

TEST_F(TheRetryThread, HealsACameraWhenTheServiceComesBackDuringARetry) {
  vod::host::takeServiceDown();
  setUp(1);
  vod::host::plan(Fault(Function::Create).onCall(1).bringsServiceUp());
  retryOnce();
  EXPECT_THAT(vod::host::channel(0).subscriptions(), SizeIs(1));
}

TEST_F(TheRetryThread, HealsAllCamerasThatAServiceDroppedWhenItRestarted) {
  setUp(1);
  setUp(2);
  vod::host::takeServiceDown();
  vod::host::drain();
  vod::host::bringServiceUp();
  retryOnce();
  EXPECT_THAT(classesAfter(1, sceneOf({1})), ElementsAre(ElementsAre("human")));
  EXPECT_THAT(classesAfter(2, sceneOf({5})), ElementsAre(ElementsAre("car")));
}

TEST_F(TheRetryThread, BringsACameraBackWithoutClassesOnceARetryHasFoundTheServiceDown) {
  setUp(1);
  vod::host::takeServiceDown();
  vod::host::drain();
  retryOnce();
  vod::host::bringServiceUp();
  sleep_.release();
  sleep_.waitUntilAsleep();
  EXPECT_THAT(classesAfter(1, sceneOf({1})), ElementsAre(IsEmpty()));
  EXPECT_TRUE(setUp(1)) << "what an application does to get its classes back";
  EXPECT_THAT(classesAfter(1, sceneOf({1})), ElementsAre(ElementsAre("human")));
}

TEST_F(TheRetryThread, CanBeStartedAndStoppedFromSeveralThreadsAtOnce) {
  sleep_.releaseAll();
  std::vector<std::thread> threads;
  for (int i = 0; i < 4; ++i) {
    threads.emplace_back([] {
      for (int round = 0; round < 50; ++round) {
        Handler::initialize(1);
        Handler::deinitialize();
      }
    });
  }
  for (std::thread& thread : threads) {
    thread.join();
  }
  failSubscribing();
  setUp(1);
  vod::host::clearJournal();
  Handler::initialize(1);
  vod::host::waitForReturned(Function::Subscribe, 1);
}

/** A callable that counts its copies and, once armed, refuses to be copied. */
struct Copied {
  struct Count {
    int copies = 0;
    bool refused = false;
  };

  explicit Copied(Count& theCount) : count(theCount) {}
  Copied(const Copied& other) : count(other.count) {
    if (count.refused) {
      throw std::logic_error("from the application's copy constructor");
    }
    ++count.copies;
  }
  void operator()(std::unique_ptr<VOD::DetectionData> /*frame*/, int /*camera*/) const {}

  Count& count;
};

TEST_F(TheRetryThread, NeverCopiesTheCallableSoThatOneWhoseCopyThrowsIsRetriedToo) {
  const int fault = failSubscribing();
  Copied::Count count;
  Handler::setup(1, Copied(count), {"human"});
  const int copies = count.copies;
  count.refused = true;
  retryOnce();
  EXPECT_THAT(vod::host::channel(0).subscriptions(), IsEmpty());
  vod::host::lift(fault);
  sleep_.release();
  sleep_.waitUntilAsleep();
  EXPECT_THAT(vod::host::channel(0).subscriptions(), SizeIs(1));
  EXPECT_EQ(count.copies, copies);
}

TEST_F(TheRetryThread, GivesUpACameraThatIsTornDown) {
  failSubscribing();
  setUp(1);
  retryOnce();
  Handler::teardown(1);
  vod::host::clearJournal();
  sleep_.release();
  sleep_.waitUntilAsleep();
  EXPECT_THAT(vod::host::journal(), IsEmpty());
}

}  // namespace
}  // namespace tarn::test
