// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "client.h"
#include "recording/recording_writer.h"
#include "support/temporary_folder.h"

#include <array>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <optional>

namespace vod::host {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/** Two recordings, and environment variables that the test sets. */
class TheEnvironment : public testing::Test {
 protected:
  static constexpr std::array variables = {"TARNVOD_HOST_RECORDINGS", "TARNVOD_HOST_PACE", "TARNVOD_HOST_LOOP",
                                           "TARNVOD_HOST_LOG"};

  TheEnvironment() {
    for (const std::string& folder : {first_, second_}) {
      recording::RecordingWriter writer(folder, folder == first_ ? "\x0a\x02\x08\x01" : "\x0a\x02\x08\x02");
      writer.append(folder == first_ ? scene_ : otherScene_);
      writer.append(emptyScene(1'000'000'000'000));
    }
    for (const char* const variable : variables) {
      ::unsetenv(variable);
    }
    set("TARNVOD_HOST_RECORDINGS", first_ + ':' + second_);
    reset();
  }
  ~TheEnvironment() override {
    for (const char* const variable : variables) {
      ::unsetenv(variable);
    }
    reset();
  }

  static void set(const char* variable, const std::string& value) { ::setenv(variable, value.c_str(), 1); }

  static std::optional<std::uint32_t> channels() {
    std::uint32_t count = 0;
    return video_object_detection_subscriber_get_nbr_channels(&count) == 0 ? std::optional(count) : std::nullopt;
  }

  /** What a creation prints that must fail. */
  static std::string errorsOfAFailingCreation() {
    return errorsOf([] { EXPECT_NE(Client(0).createResult(), 0); });
  }

  static std::string refused(const std::string& rest) { return "video_object_detection_subscriber: " + rest + '\n'; }

  const tarn::test::TemporaryFolder temporary_;
  const std::string first_ = temporary_.path() / "first";
  const std::string second_ = temporary_.path() / "second";
  const std::string scene_ = sceneWith({{0.1F, 0.1F}});
  const std::string otherScene_ = sceneWith({{0.9F, 0.9F}});
};

TEST_F(TheEnvironment, NamesAFolderForEachChannel) {
  EXPECT_EQ(channels(), 2U);
  Client first(0);
  Client second(1);
  first.subscribe().waitForScenes(1);
  second.subscribe().waitForScenes(1);
  EXPECT_THAT(first.scenes(), ElementsAre(scene_));
  EXPECT_THAT(second.scenes(), ElementsAre(otherScene_));
}

TEST_F(TheEnvironment, NamesASession) {
  const std::filesystem::path session = temporary_.path() / "session";
  for (const int camera : {1, 2}) {
    const std::filesystem::path folder = session / ("camera-" + std::to_string(camera));
    recording::RecordingWriter writer(folder, "", recording::BootId{'a'});
    writer.append(camera == 1 ? scene_ : otherScene_, {camera, camera});
  }
  set("TARNVOD_HOST_RECORDINGS", first_ + ':' + session.string());
  set("TARNVOD_HOST_PACE", "max");
  reset();
  EXPECT_EQ(channels(), 3U);
  Client client(2);
  client.subscribe().waitForScenes(1);
  EXPECT_EQ(client.scenes().front(), otherScene_);
}

TEST_F(TheEnvironment, DoesNotCountOnceTheTestMakesChannels) {
  channel(0);
  EXPECT_EQ(channels(), 1U);
}

TEST_F(TheEnvironment, LetsTheTestDropWhatItServes) {
  Client client(1);
  client.subscribe().waitForScenes(1);
  servedChannel(1).dropSubscriptions();
  drain();
  EXPECT_EQ(client.teardowns(), 1);
  EXPECT_EQ(channels(), 2U);
}

TEST_F(TheEnvironment, ChoosesThePaceAndTheEnd) {
  set("TARNVOD_HOST_PACE", "max");
  set("TARNVOD_HOST_LOOP", "0");
  Client client(0);
  client.receiveEmptyHits().subscribe();
  servedChannel(0).waitForEndOfRecording();
  EXPECT_EQ(client.scenes().size(), 2U);
}

TEST_F(TheEnvironment, ChoosesAFactor) {
  set("TARNVOD_HOST_PACE", "1e9");
  set("TARNVOD_HOST_LOOP", "0");
  Client client(0);
  client.receiveEmptyHits().subscribe();
  servedChannel(0).waitForEndOfRecording();
  EXPECT_EQ(client.scenes().size(), 2U);
}

TEST_F(TheEnvironment, LoopsByDefault) {
  set("TARNVOD_HOST_PACE", "max");
  Client client(0);
  client.subscribe().waitForScenes(3);
  EXPECT_EQ(client.scenes()[2], scene_);
}

TEST_F(TheEnvironment, RefusesAWrongPace) {
  for (const char* const wrong : {"", "0", "-1", "fast", "1x", "nan", "inf"}) {
    set("TARNVOD_HOST_PACE", wrong);
    reset();
    EXPECT_EQ(errorsOfAFailingCreation(),
              refused("TARNVOD_HOST_PACE is \"" + std::string(wrong) + "\"; it must be a positive number or \"max\""));
  }
}

TEST_F(TheEnvironment, RefusesAWrongLoop) {
  for (const char* const wrong : {"", "2", "yes"}) {
    set("TARNVOD_HOST_LOOP", wrong);
    reset();
    EXPECT_EQ(errorsOfAFailingCreation(),
              refused("TARNVOD_HOST_LOOP is \"" + std::string(wrong) + "\"; it must be 0 or 1"));
  }
}

TEST_F(TheEnvironment, RefusesWrongFolders) {
  for (const std::string& wrong : {std::string(), ":" + first_, first_ + ':', first_ + "::" + second_}) {
    set("TARNVOD_HOST_RECORDINGS", wrong);
    reset();
    EXPECT_EQ(errorsOfAFailingCreation(), refused("TARNVOD_HOST_RECORDINGS is \"" + wrong +
                                                  "\"; it must be folders separated by colons, none of them empty"));
  }
}

TEST_F(TheEnvironment, RefusesAWrongLog) {
  set("TARNVOD_HOST_LOG", "file");
  EXPECT_EQ(errorsOfAFailingCreation(), refused("TARNVOD_HOST_LOG is \"file\"; it must be \"stderr\" or \"syslog\""));
}

TEST_F(TheEnvironment, FailsEveryCallThatNeedsItWhenItIsWrongAndReportsItOnce) {
  set("TARNVOD_HOST_LOOP", "2");
  EXPECT_EQ(errorsOf([] {
              EXPECT_EQ(channels(), std::nullopt);
              EXPECT_NE(Client(0).createResult(), 0);
              EXPECT_NE(Client(0).createResult(), 0);
              EXPECT_NE(video_object_detection_set_channel_configuration(0, nullptr, 0, nullptr), 0);
            }),
            refused("TARNVOD_HOST_LOOP is \"2\"; it must be 0 or 1"));
}

TEST_F(TheEnvironment, SaysWhatIsWrongWithIt) {
  set("TARNVOD_HOST_LOOP", "2");
  EXPECT_EQ(errorsOf([] { EXPECT_EQ(configurationError(), "TARNVOD_HOST_LOOP is \"2\"; it must be 0 or 1"); }),
            refused("TARNVOD_HOST_LOOP is \"2\"; it must be 0 or 1"));
}

TEST_F(TheEnvironment, HasNoErrorWhenItIsValid) {
  EXPECT_EQ(configurationError(), std::nullopt);
}

TEST_F(TheEnvironment, HasNoErrorOnceTheTestMakesChannels) {
  set("TARNVOD_HOST_LOOP", "2");
  channel(0);
  EXPECT_EQ(configurationError(), std::nullopt);
}

TEST_F(TheEnvironment, LeavesOtherChannelsAloneWhenAFolderIsMissing) {
  set("TARNVOD_HOST_RECORDINGS", "/nowhere:" + second_);
  EXPECT_EQ(errorsOfAFailingCreation(), refused("/nowhere: No such file or directory"));
  EXPECT_EQ(channels(), 2U);
  EXPECT_EQ(Client(1).createResult(), 0);
}

TEST_F(TheEnvironment, ServesTheInstalledRecordingsWhenItNamesNone) {
  ::unsetenv("TARNVOD_HOST_RECORDINGS");
  EXPECT_EQ(channels(), 2U);
  const std::filesystem::path installed = TARNVOD_TEST_INSTALLED_RECORDINGS;
  if (std::filesystem::exists(installed / "street")) {
    EXPECT_EQ(Client(0).createResult(), 0);
    EXPECT_EQ(Client(1).createResult(), 0);
  } else {
    EXPECT_EQ(errorsOfAFailingCreation(), refused((installed / "street").string() + ": No such file or directory"));
  }
}

}  // namespace
}  // namespace vod::host
