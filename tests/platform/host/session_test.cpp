// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "client.h"
#include "recording/recording.h"
#include "recording/recording_writer.h"
#include "support/temporary_folder.h"

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace vod::host {
namespace {

using recording::Arrival;
using recording::BootId;
using testing::ElementsAre;

constexpr Replay onceAtOnce{std::nullopt, false};
constexpr BootId boot{'a'};
constexpr BootId nextBoot{'b'};

/** A scene that is identified by its time stamp. */
std::string scene(std::uint64_t timestamp) {
  return sceneWith({{0.5F, 0.5F}}, timestamp);
}

/** The time stamps of the scenes that several clients receive, in the order of the callbacks. */
class Order {
 public:
  void add(Client& client) {
    VOD::Scene message;
    message.ParseFromString(client.scenes().back());
    const std::lock_guard lock(mutex_);
    timestamps_.push_back(message.timestamp());
  }
  std::vector<std::uint64_t> timestamps() const {
    const std::lock_guard lock(mutex_);
    return timestamps_;
  }

 private:
  mutable std::mutex mutex_;
  std::vector<std::uint64_t> timestamps_;
};

/** The folder of a session; tests write what its cameras recorded. */
class ASession : public HostTest {
 protected:
  ASession() { std::filesystem::create_directory(folder_); }
  // Before the folder is gone.
  ~ASession() override { reset(); }

  struct Recorded {
    std::uint64_t timestamp;
    std::int64_t arrival;
  };

  std::filesystem::path camera(int number) const { return folder_ / ("camera-" + std::to_string(number)); }

  /** By the wall clock, a boot begins as many hours after 1970 as the code of its letter says. */
  void write(const std::filesystem::path& folder, const std::vector<Recorded>& scenes,
             const std::optional<BootId>& machine = boot) const {
    recording::RecordingWriter writer(folder, "\x0a\x02\x08\x01", machine);
    for (const auto& [timestamp, arrival] : scenes) {
      const std::int64_t start = std::int64_t{machine.value_or(boot)[0]} * 3'600'000'000;
      writer.append(scene(timestamp), {start + arrival, arrival});
    }
  }

  /** Plays the session to its end to clients of both channels, which are subscribed when it begins. */
  std::vector<std::uint64_t> played(Replay replay = onceAtOnce) const {
    Order order;
    Client first(0, {[&](Client& client) { order.add(client); }, {}});
    Client second(1, {[&](Client& client) { order.add(client); }, {}});
    first.subscribe();
    second.subscribe();
    session(folder_, replay);
    channel(0).waitForEndOfRecording();
    return order.timestamps();
  }

  /** Waits for each scene before it gives the channel the next. */
  static void deliverOneByOne(std::size_t scenes, const Channel& channel) {
    Client client(channel.number());
    client.subscribe();
    for (std::size_t number = 1; number <= scenes; ++number) {
      channel.pushScene(scene(number));
      client.waitForScenes(number);
    }
  }

  const tarn::test::TemporaryFolder temporary_;
  const std::filesystem::path folder_ = temporary_.path() / "session";
};

TEST_F(ASession, IsDeliveredInTheOrderInWhichItsScenesArrived) {
  write(camera(1), {{1, 1000}, {2, 3000}, {3, 3500}});
  write(camera(2), {{101, 2000}, {102, 3400}, {103, 9000}});
  EXPECT_THAT(played(), ElementsAre(1, 101, 2, 102, 3, 103));
}

TEST_F(ASession, FeedsAChannelFromEachOfItsCamerasInTheirOrder) {
  write(camera(2), {{2, 0}});
  write(camera(10), {{10, 0}});
  const auto channels = session(folder_, onceAtOnce);
  ASSERT_EQ(channels.size(), 2U);
  EXPECT_EQ(channels[1].number(), 1);
  Client client(1);
  client.subscribe();
  channels[1].waitForEndOfRecording();
  EXPECT_THAT(client.scenes(), ElementsAre(scene(10)));
}

TEST_F(ASession, KeepsTheTimeBetweenItsCameras) {
  write(camera(1), {{0, 5'000'000}});
  write(camera(2), {{0, 5'030'000}});
  const auto begin = std::chrono::steady_clock::now();
  EXPECT_EQ(played({1.0, false}).size(), 2U);
  EXPECT_GE(std::chrono::steady_clock::now() - begin, std::chrono::milliseconds(30));
}

TEST_F(ASession, IsPlayedSlowerByAFactor) {
  write(camera(1), {{0, 0}});
  write(camera(2), {{0, 10'000}});
  const auto begin = std::chrono::steady_clock::now();
  EXPECT_EQ(played({0.25, false}).size(), 2U);
  EXPECT_GE(std::chrono::steady_clock::now() - begin, std::chrono::milliseconds(40));
}

TEST_F(ASession, StartsAgainWithAllCamerasTogether) {
  write(camera(1), {{1, 1000}, {2, 3000}, {3, 3500}});
  write(camera(2), {{101, 2000}});
  Order order;
  Client first(0, {[&](Client& client) { order.add(client); }, {}});
  Client second(1, {[&](Client& client) { order.add(client); }, {}});
  first.subscribe();
  second.subscribe();
  session(folder_, {std::nullopt, true});
  first.waitForScenes(7);
  auto timestamps = order.timestamps();
  timestamps.resize(8);
  EXPECT_THAT(timestamps, ElementsAre(1, 101, 2, 3, 1, 101, 2, 3));
}

TEST_F(ASession, BeginsWithTheFirstSubscriptionOfAnyChannel) {
  write(camera(1), {{1, 1000}});
  write(camera(2), {{101, 2000}});
  session(folder_, onceAtOnce);
  EXPECT_FALSE(channel(0).isAtEndOfRecording());
  Client second(1);
  second.subscribe();
  channel(0).waitForEndOfRecording();
  EXPECT_THAT(second.scenes(), ElementsAre(scene(101)));
}

TEST_F(ASession, IsJoinedWhereItIs) {
  write(camera(1), {{1, 1000}, {2, 3000}});
  write(camera(2), {{101, 2000}, {102, 4000}});
  session(folder_, onceAtOnce);
  Client second(1);
  Client first(0, {[&](Client& client) {
                     if (client.scenes().size() == 2) {
                       second.subscribe();
                     }
                   },
                   {}});
  first.subscribe();
  channel(0).waitForEndOfRecording();
  EXPECT_THAT(second.scenes(), ElementsAre(scene(102)));
}

TEST_F(ASession, GoesOnWhileOneOfItsChannelsHasSubscriptions) {
  write(camera(1), {{1, 1000}});
  write(camera(2), {{101, 2000}, {102, 4000}});
  session(folder_, onceAtOnce);
  Client second(1);
  Client first(0, {[&](Client& client) {
                     second.subscribe();
                     EXPECT_EQ(client.unsubscribe(), 0);
                   },
                   {}});
  first.subscribe();
  second.waitForScenes(2);
  EXPECT_THAT(second.scenes(), ElementsAre(scene(101), scene(102)));
}

TEST_F(ASession, BeginsAgainWhenAllSubscriptionsHadEnded) {
  write(camera(1), {{1, 1000}});
  write(camera(2), {{101, 2000}, {102, 3000}});
  session(folder_, onceAtOnce);
  for (int pass = 0; pass < 2; ++pass) {
    Client second(1);
    second.subscribe();
    channel(1).waitForEndOfRecording();
    EXPECT_THAT(second.scenes(), ElementsAre(scene(101), scene(102)));
  }
}

TEST_F(ASession, WithoutArrivalTimesIsPlayedByTheTimeSinceEachRecordingBegan) {
  write(camera(1), {{1'000, 0}, {1'100, 0}, {1'200, 0}}, std::nullopt);
  write(camera(2), {{70'000, 0}, {70'150, 0}}, std::nullopt);
  EXPECT_THAT(played(), ElementsAre(1'000, 70'000, 1'100, 70'150, 1'200));
}

TEST_F(ASession, OfAMachineThatWasStartedAgainContinuesWithoutThePause) {
  for (const int number : {1, 2}) {
    std::filesystem::create_directory(camera(number));
  }
  write(camera(1) / "segment-000001", {{1, 900'000'000}, {2, 900'002'000}});
  write(camera(1) / "segment-000002", {{3, 1000}, {4, 3000}}, nextBoot);
  write(camera(2) / "segment-000001", {{101, 900'001'000}, {102, 900'009'000}});
  write(camera(2) / "segment-000002", {{103, 2000}}, nextBoot);
  callbackThreads(Threads::OneForAll);  // which keeps the order of the callbacks
  // One hour is between the two by the wall clock.
  EXPECT_THAT(played({1.0, false}), ElementsAre(1, 101, 2, 102, 3, 103, 4));
}

TEST_F(ASession, WhoseWallClockJumpedKeepsItsOrder) {
  for (const int number : {1, 2}) {
    recording::RecordingWriter writer(camera(number), "", boot);
    for (std::int64_t step = 0; step < 3; ++step) {
      const std::int64_t monotonic = 10 * step + number;
      constexpr std::int64_t ahead = 1'000'000'000;
      writer.append(scene(static_cast<std::uint64_t>(monotonic)), {5'000'000'000 + (step == 1 ? ahead : 0), monotonic});
    }
  }
  EXPECT_THAT(played(), ElementsAre(1, 2, 11, 12, 21, 22));
}

TEST_F(ASession, ThatIsDamagedIsPlayedBehindTheDamageAndReported) {
  write(camera(1), {{1, 1000}, {2, 3000}, {3, 5000}});
  write(camera(2), {{101, 2000}});
  const std::string file = camera(1) / recording::scenesFileName;
  const std::size_t size = scene(1).size() + 1;
  std::fstream(file, std::ios::binary | std::ios::in | std::ios::out).seekp(static_cast<std::streamoff>(size))
      << std::string(12, '\xff');
  std::vector<std::uint64_t> timestamps;
  EXPECT_EQ(errorsOf([&] { timestamps = played(); }),
            "video_object_detection_subscriber: " + file + ": offset " + std::to_string(size) +
                ": the length of a message is not a valid varint; 1 frame lost, goes on at offset " +
                std::to_string(2 * size) + '\n');
  EXPECT_THAT(timestamps, ElementsAre(1, 101, 3));
}

TEST_F(ASession, WithACameraThatCannotBePlayedPlaysTheOthers) {
  write(camera(1), {{1, 1000}});
  std::filesystem::create_directory(camera(2));
  const std::string error = "video_object_detection_subscriber: " + (camera(2) / recording::scenesFileName).string() +
                            ": No such file or directory\n";
  session(folder_, onceAtOnce);
  Client second(1);
  EXPECT_EQ(errorsOf([&] { EXPECT_NE(second.trySubscribe(), 0); }), error);
  Client first(0);
  EXPECT_EQ(errorsOf([&] {
              first.subscribe();
              channel(0).waitForEndOfRecording();
            }),
            error);
  EXPECT_THAT(first.scenes(), ElementsAre(scene(1)));
}

TEST_F(ASession, IsNotHeldUpByTheCallbacksOfOneChannel) {
  write(camera(1), {{1, 1000}, {2, 3000}, {3, 5000}});
  write(camera(2), {{101, 2000}, {102, 4000}});
  Gate gate;
  Client first(0);
  Client second(1, {[&](Client&) { gate.pass(); }, {}});
  first.subscribe();
  second.subscribe();
  session(folder_, {1.0, false});
  first.waitForScenes(3);
  EXPECT_LE(second.scenes().size(), 1U);
  gate.open();
  channel(1).waitForEndOfRecording();
  EXPECT_EQ(second.scenes().size(), 2U);
}

TEST_F(ASession, DoesNotRunAheadOfAChannelByMoreThan64Scenes) {
  std::vector<Recorded> scenes;
  for (std::int64_t number = 0; number < 80; ++number) {
    scenes.push_back({static_cast<std::uint64_t>(number), number});
  }
  write(camera(1), scenes);
  write(camera(2), scenes);
  Gate gate;
  Client first(0, {[&](Client&) { gate.pass(); }, {}});
  Client second(1);
  first.subscribe();
  second.subscribe();
  session(folder_, {1.0, false});
  gate.waitUntilReached();
  // One scene of camera 1 is in the callback and 64 wait; the next one holds up those of camera 2 behind it.
  second.waitForScenes(65);
  deliverOneByOne(100, channel(2));  // meanwhile the session would go on, if it could
  EXPECT_EQ(second.scenes().size(), 65U);
  gate.open();
  channel(0).waitForEndOfRecording();
  EXPECT_EQ(first.scenes().size(), 80U);
  EXPECT_EQ(second.scenes().size(), 80U);
}

TEST_F(ASession, MayBePlayedOnTheThreadOfAllChannels) {
  callbackThreads(Threads::OneForAll);
  write(camera(1), {{1, 1000}, {2, 3000}});
  write(camera(2), {{101, 2000}});
  EXPECT_THAT(played({1.0, false}), ElementsAre(1, 101, 2));
}

TEST_F(ASession, GivesAChannelUpThatPlaysSomethingElse) {
  write(camera(1), {{1, 1000}});
  write(camera(2), {{101, 2000}});
  write(temporary_.path() / "other", {{7, 0}});
  session(folder_, onceAtOnce);
  channel(0).recording(temporary_.path() / "other", onceAtOnce);
  Client first(0);
  Client second(1);
  first.subscribe();
  channel(0).waitForEndOfRecording();
  second.subscribe();
  channel(1).waitForEndOfRecording();
  EXPECT_THAT(first.scenes(), ElementsAre(scene(7)));
  EXPECT_THAT(second.scenes(), ElementsAre(scene(101)));
}

TEST_F(ASession, DroppedOnOneChannelGoesOnForTheOther) {
  write(camera(1), {{1, 1000}});
  write(camera(2), {{101, 2000}});
  session(folder_, onceAtOnce);
  Client second(1);
  Client first(0, {[&](Client&) {
                     second.subscribe();
                     channel(0).dropSubscriptions();
                   },
                   {}});
  first.subscribe().waitForTeardowns(1);
  second.waitForScenes(1);
  EXPECT_THAT(second.scenes(), ElementsAre(scene(101)));
}

TEST_F(ASession, IsNotAnyFolder) {
  EXPECT_THROW(session(folder_), std::runtime_error);
}

}  // namespace
}  // namespace vod::host
