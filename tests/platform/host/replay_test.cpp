// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "client.h"
#include "recording/recording.h"
#include "recording/recording_writer.h"
#include "support/temporary_folder.h"

#include <sys/stat.h>

#include <atomic>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <thread>

namespace vod::host {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr Replay onceAtOnce{std::nullopt, false};

/** Two scenes, the second 20 ms after the first; the first has an unknown field. */
class ARecording : public HostTest {
 protected:
  ARecording() {
    recording::RecordingWriter writer(folder_, detector_);
    for (const std::string& scene : scenes_) {
      writer.append(scene);
    }
  }
  // Before the folder is gone.
  ~ARecording() override { reset(); }

  void appendToScenes(const std::string& bytes) const {
    std::ofstream(scenesFile(), std::ios::binary | std::ios::app) << bytes;
  }
  std::string scenesFile() const { return folder_ / recording::scenesFileName; }

  const tarn::test::TemporaryFolder temporary_;
  const std::filesystem::path folder_ = temporary_.path() / "recording";
  const std::string detector_ = std::string("\x0a\x02\x08\x01", 4);
  const std::vector<std::string> scenes_ = {sceneWith({{0.5F, 0.5F}}, 1'000'000) + "\x7a\x02hi",
                                            sceneWith({{0.2F, 0.5F}}, 1'020'000)};
};

TEST_F(ARecording, IsPlayedOnceByteForByte) {
  channel(0).recording(folder_, onceAtOnce);
  Client client(0);
  client.subscribe();
  channel(0).waitForEndOfRecording();
  EXPECT_EQ(client.scenes(), scenes_);
}

TEST_F(ARecording, AnswersWithItsDetectorInformation) {
  channel(0).recording(folder_, onceAtOnce);
  const Client client(0);
  std::uint8_t* bytes = nullptr;
  std::size_t length = 0;
  EXPECT_EQ(video_object_detection_subscriber_get_information(client.handle(), &bytes, &length, nullptr), 0);
  EXPECT_EQ(std::string(bytes, bytes + length), detector_);
  std::free(bytes);
}

TEST_F(ARecording, KeepsThePaceOfItsTimeStamps) {
  channel(0).recording(folder_, {1.0, false});
  Client client(0);
  const auto begin = std::chrono::steady_clock::now();
  client.subscribe();
  channel(0).waitForEndOfRecording();
  EXPECT_GE(std::chrono::steady_clock::now() - begin, std::chrono::milliseconds(20));
  EXPECT_EQ(client.scenes(), scenes_);
}

TEST_F(ARecording, IsPlayedSlowerByAFactor) {
  channel(0).recording(folder_, {0.5, false});
  Client client(0);
  const auto begin = std::chrono::steady_clock::now();
  client.subscribe();
  channel(0).waitForEndOfRecording();
  EXPECT_GE(std::chrono::steady_clock::now() - begin, std::chrono::milliseconds(40));
}

TEST_F(ARecording, IsPlayedFasterByAFactor) {
  recording::RecordingWriter writer(temporary_.path() / "long", detector_);
  writer.append(sceneWith({{0.5F, 0.5F}}, 0));
  constexpr std::uint64_t hour = 3'600'000'000;
  writer.append(sceneWith({{0.5F, 0.5F}}, hour));
  channel(0).recording(temporary_.path() / "long", {1e6, false});
  Client client(0);
  const auto begin = std::chrono::steady_clock::now();
  client.subscribe();
  channel(0).waitForEndOfRecording();
  EXPECT_GE(std::chrono::steady_clock::now() - begin, std::chrono::microseconds(3600));
  EXPECT_EQ(client.scenes().size(), 2U);
}

TEST_F(ARecording, StartsAgainAtItsEndIfWanted) {
  channel(0).recording(folder_, {std::nullopt, true});
  Client client(0);
  client.subscribe();
  client.waitForScenes(5);
  EXPECT_EQ(client.unsubscribe(), 0);
  const auto scenes = client.scenes();
  EXPECT_EQ(scenes[2], scenes_[0]);
  EXPECT_EQ(scenes[3], scenes_[1]);
  EXPECT_EQ(scenes[4], scenes_[0]);
}

TEST_F(ARecording, KeepsItsPaceFromOnePassToTheNext) {
  channel(0).recording(folder_, {1.0, true});
  Client client(0);
  const auto begin = std::chrono::steady_clock::now();
  client.subscribe();
  client.waitForScenes(4);
  EXPECT_GE(std::chrono::steady_clock::now() - begin, std::chrono::milliseconds(60));
}

TEST_F(ARecording, PlaysFromItsStartForTheFirstSubscriptionAgain) {
  channel(0).recording(folder_, onceAtOnce);
  Client client(0);
  client.subscribe();
  channel(0).waitForEndOfRecording();
  channel(0).dropSubscriptions();
  drain();
  client.subscribe();
  channel(0).waitForEndOfRecording();
  EXPECT_THAT(client.scenes(), ElementsAre(scenes_[0], scenes_[1], scenes_[0], scenes_[1]));
}

TEST_F(ARecording, BeginsWithItsFirstSceneHoweverOftenItIsPlayedAgain) {
  channel(0).recording(folder_, {std::nullopt, true});
  std::atomic<bool> isFirst = true;
  std::atomic<bool> isAnother = false;
  Client client(0, {[&](const Client& receiver) {
                      if (isFirst.exchange(false) && receiver.scenes().back() != scenes_.front()) {
                        isAnother = true;
                      }
                    },
                    {}});
  client.subscribe();
  for (int time = 0; time < 300 && !isAnother; ++time) {
    while (isFirst) {
      std::this_thread::yield();
    }
    // The scene that is on its way now must not be taken for one of the next subscription.
    client.unsubscribe();
    isFirst = true;
    client.trySubscribe();
  }
  EXPECT_FALSE(isAnother);
}

TEST_F(ARecording, IsOneStreamForAllWhoAreSubscribed) {
  const Gate gate;
  channel(0).recording(folder_, onceAtOnce);
  Client first(0, {[&](Client&) { gate.pass(); }, {}});
  Client second(0);
  first.subscribe();
  gate.waitUntilReached();
  second.subscribe();
  gate.open();
  channel(0).waitForEndOfRecording();
  EXPECT_EQ(first.scenes(), scenes_);
  EXPECT_THAT(second.scenes(), ElementsAre(scenes_[1]));
}

TEST_F(ARecording, PlaysOnTheThreadOfAllChannelsIfWanted) {
  callbackThreads(Threads::OneForAll);
  channel(0).recording(folder_, onceAtOnce);
  channel(1).recording(folder_, onceAtOnce);
  Client first(0);
  Client second(1);
  first.subscribe();
  second.subscribe();
  channel(0).waitForEndOfRecording();
  channel(1).waitForEndOfRecording();
  EXPECT_EQ(first.scenes(), scenes_);
  EXPECT_EQ(first.received()[0].thread, second.received()[1].thread);
}

TEST_F(ARecording, BeginsForThoseWhoAreSubscribedAlready) {
  Client client(0);
  client.subscribe();
  channel(0).recording(folder_, onceAtOnce).waitForEndOfRecording();
  EXPECT_EQ(client.scenes(), scenes_);
}

TEST_F(ARecording, WithoutScenesIsSilent) {
  const recording::RecordingWriter writer(temporary_.path() / "silent", detector_);
  channel(0).recording(temporary_.path() / "silent", {std::nullopt, true});
  Client client(0);
  client.subscribe();
  channel(0).waitForEndOfRecording();
  EXPECT_THAT(client.scenes(), IsEmpty());
}

TEST_F(ARecording, ThatIsCutOffIsPlayedUpToThereAndReported) {
  appendToScenes("\x05xx");
  const auto size = static_cast<std::size_t>(std::filesystem::file_size(scenesFile())) - 3;
  channel(0).recording(folder_, onceAtOnce);
  Client client(0);
  EXPECT_EQ(errorsOf([&] {
              client.subscribe();
              channel(0).waitForEndOfRecording();
            }),
            "video_object_detection_subscriber: " + scenesFile() + ": offset " + std::to_string(size) +
                ": a message of 5 bytes is cut off after 2\n");
  EXPECT_EQ(client.scenes(), scenes_);
}

TEST_F(ARecording, ThatIsCutOffIsReportedOnceHoweverOftenItIsPlayed) {
  appendToScenes("\x05xx");
  channel(0).recording(folder_, {std::nullopt, true});
  Client client(0);
  const std::string errors = errorsOf([&] {
    client.subscribe();
    client.waitForScenes(7);
    EXPECT_EQ(client.remove(), 0);
  });
  EXPECT_EQ(std::count(errors.begin(), errors.end(), '\n'), 1) << errors;
}

TEST_F(ARecording, ThatIsDamagedFromTheStartFailsTheSubscription) {
  std::ofstream(scenesFile(), std::ios::binary) << "\x05xx";
  channel(0).recording(folder_, onceAtOnce);
  Client client(0);
  EXPECT_EQ(
      errorsOf([&] { EXPECT_NE(client.trySubscribe(), 0); }),
      "video_object_detection_subscriber: " + scenesFile() + ": offset 0: a message of 5 bytes is cut off after 2\n");
  EXPECT_THAT(channel(0).subscriptions(), IsEmpty());
}

TEST_F(ARecording, WithoutItsScenesFailsTheSubscription) {
  std::filesystem::remove(scenesFile());
  channel(0).recording(folder_, onceAtOnce);
  Client client(0);
  EXPECT_EQ(errorsOf([&] { EXPECT_NE(client.trySubscribe(), 0); }),
            "video_object_detection_subscriber: " + scenesFile() + ": No such file or directory\n");
}

TEST_F(ARecording, ThatVanishesWhileItLoopsEndsAndIsReported) {
  channel(0).recording(folder_, {std::nullopt, true});
  Client client(0, {[&](Client&) { std::filesystem::remove(scenesFile()); }, {}});
  EXPECT_EQ(errorsOf([&] {
              client.subscribe();
              channel(0).waitForEndOfRecording();
            }),
            "video_object_detection_subscriber: " + scenesFile() + ": No such file or directory\n");
  EXPECT_EQ(client.scenes(), scenes_);
}

TEST_F(ARecording, WithDamagedDetectorInformationFailsTheQuestionForIt) {
  const std::string file = folder_ / recording::detectorInformationFileName;
  // A sound object class, then one whose name is longer than its field.
  std::ofstream(file, std::ios::binary) << detector_ + "\x0a\x03\x12\x07x";
  channel(0).recording(folder_, onceAtOnce);
  const Client client(0);
  std::uint8_t* bytes = nullptr;
  std::size_t length = 0;
  char* error = nullptr;
  const std::string expected = file + ": offset 4: not valid detector information";
  EXPECT_EQ(errorsOf([&] {
              EXPECT_NE(video_object_detection_subscriber_get_information(client.handle(), &bytes, &length, &error), 0);
            }),
            "video_object_detection_subscriber: " + expected + '\n');
  EXPECT_EQ(error, expected);
  std::free(error);
}

TEST_F(ARecording, WhoseFolderIsMissingFailsTheCreation) {
  const std::string missing = temporary_.path() / "missing";
  channel(0).recording(missing, onceAtOnce);
  EXPECT_EQ(errorsOf([] { EXPECT_NE(Client(0).createResult(), 0); }),
            "video_object_detection_subscriber: " + missing + ": No such file or directory\n");
}

TEST_F(ARecording, WhoseFolderIsAFileFailsTheCreation) {
  channel(0).recording(scenesFile(), onceAtOnce);
  EXPECT_EQ(errorsOf([] { EXPECT_NE(Client(0).createResult(), 0); }),
            "video_object_detection_subscriber: " + scenesFile() + ": not a recording folder\n");
}

TEST_F(ARecording, WhoseErrorStaysIsReportedOnce) {
  std::filesystem::remove(scenesFile());
  std::filesystem::remove(folder_ / recording::detectorInformationFileName);
  channel(0).recording(folder_, onceAtOnce);
  const auto askAndSubscribe = [] {
    Client client(0);
    std::uint8_t* bytes = nullptr;
    std::size_t length = 0;
    EXPECT_NE(video_object_detection_subscriber_get_information(client.handle(), &bytes, &length, nullptr), 0);
    EXPECT_NE(client.trySubscribe(), 0);
  };
  EXPECT_THAT(errorsOf(askAndSubscribe), testing::AllOf(testing::HasSubstr(scenesFile()),
                                                        testing::HasSubstr(recording::detectorInformationFileName)));
  EXPECT_EQ(errorsOf(askAndSubscribe), "");
}

TEST_F(ARecording, WhoseErrorComesBackIsReportedAgain) {
  const std::string moved = temporary_.path() / "moved";
  channel(0).recording(folder_, onceAtOnce);
  const auto create = [] { return Client(0).createResult(); };
  std::filesystem::rename(folder_, moved);
  EXPECT_NE(errorsOf([&] { EXPECT_NE(create(), 0); }), "");
  std::filesystem::rename(moved, folder_);
  EXPECT_EQ(errorsOf([&] { EXPECT_EQ(create(), 0); }), "");
  std::filesystem::rename(folder_, moved);
  EXPECT_NE(errorsOf([&] { EXPECT_NE(create(), 0); }), "");
}

TEST_F(ARecording, WhoseScenesAreAFifoFailsTheSubscription) {
  std::filesystem::remove(scenesFile());
  ASSERT_EQ(::mkfifo(scenesFile().c_str(), 0600), 0);
  channel(0).recording(folder_, onceAtOnce);
  Client client(0);
  EXPECT_EQ(errorsOf([&] { EXPECT_NE(client.trySubscribe(), 0); }),
            "video_object_detection_subscriber: " + scenesFile() + ": not a regular file\n");
}

TEST_F(ARecording, IsAtItsEndAfterItsLastSceneAndUntilItIsPlayedAgain) {
  channel(0).recording(folder_, onceAtOnce);
  EXPECT_FALSE(channel(0).isAtEndOfRecording());
  {
    Client client(0, {[](Client&) { EXPECT_FALSE(channel(0).isAtEndOfRecording()); }, {}});
    client.subscribe();
    channel(0).waitForEndOfRecording();
    EXPECT_TRUE(channel(0).isAtEndOfRecording());
    EXPECT_THAT(channel(0).subscriptions(), testing::SizeIs(1));
    EXPECT_EQ(client.teardowns(), 0);
  }
  Gate gate;
  Client client(0, {[&](Client&) { gate.pass(); }, {}});
  client.subscribe();
  EXPECT_FALSE(channel(0).isAtEndOfRecording());
  gate.open();
}

TEST_F(ARecording, MayHoldLargeScenes) {
  const std::vector<std::string> scenes = {largeScene(200), largeScene(5'000), largeScene(50'000)};
  recording::RecordingWriter writer(temporary_.path() / "large", detector_);
  for (const std::string& scene : scenes) {
    writer.append(scene);
  }
  channel(0).recording(temporary_.path() / "large", onceAtOnce);
  Client client(0);
  client.subscribe();
  channel(0).waitForEndOfRecording();
  EXPECT_EQ(client.scenes(), scenes);
}

TEST_F(ARecording, WithTimeStampsThatGoBackIsPlayedAtOnce) {
  recording::RecordingWriter writer(temporary_.path() / "back", detector_);
  writer.append(sceneWith({{0.5F, 0.5F}}, 3'600'000'000'000));
  writer.append(sceneWith({{0.5F, 0.5F}}, 5));
  writer.append("\xff");
  channel(0).recording(temporary_.path() / "back", {1.0, false});
  Client client(0);
  client.subscribe();
  channel(0).waitForEndOfRecording();
  EXPECT_EQ(client.scenes().size(), 3U);
}

}  // namespace
}  // namespace vod::host
