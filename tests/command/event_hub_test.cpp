// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "viewer/event_hub.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <thread>

using tarn::command::EventHub;
using tarn::command::EventStream;
using tarn::command::EventText;
using testing::Optional;

namespace {

EventText text(const std::string& words) {
  return std::make_shared<const std::string>(words);
}

TEST(AnEvent, IsWrittenAsBrowsersReadIt) {
  EXPECT_EQ(*tarn::command::makeEvent("frame", {{"camera", 1}}), "event: frame\ndata: {\"camera\":1}\n\n");
}

TEST(AnEvent, NeverHoldsALineEndOfANameInIt) {
  EXPECT_EQ(*tarn::command::makeEvent("frame", {{"className", "a\n\nevent: b"}}),
            "event: frame\ndata: {\"className\":\"a\\n\\nevent: b\"}\n\n");
}

TEST(AStream, GivesAllThatWaitsTheStateFirst) {
  EventStream stream(4);
  stream.pushFrame(text("1 "));
  stream.pushFrame(text("2 "));
  stream.setState(text("old state "));
  stream.setState(text("state "));

  EXPECT_THAT(stream.take(), Optional(std::string("state 1 2 ")));
}

TEST(AStream, WithoutRoomDropsTheOldestFramesAndTellsHowMany) {
  EventStream stream(2);
  for (const char* frame : {"1 ", "2 ", "3 ", "4 ", "5 "}) {
    stream.pushFrame(text(frame));
  }

  EXPECT_THAT(stream.take(), Optional(std::string("event: dropped\ndata: {\"dropped\":3}\n\n4 5 ")));
  stream.pushFrame(text("6 "));
  EXPECT_THAT(stream.take(), Optional(std::string("6 "))) << "it is told once";
}

TEST(AStream, ThatIsClosedWakesWhoeverWaits) {
  EventStream stream(2);
  std::thread closing([&stream] { stream.close(); });

  EXPECT_EQ(stream.take(), std::nullopt);
  closing.join();
}

TEST(AHub, GivesFramesToAllWhoJoined) {
  EventHub hub;
  const auto first = hub.join();
  const auto second = hub.join();

  hub.publishFrame(text("frame "));

  EXPECT_THAT(first->take(), Optional(std::string("frame ")));
  EXPECT_THAT(second->take(), Optional(std::string("frame ")));
}

TEST(AHub, GivesItsStateToWhoeverJoinsLater) {
  EventHub hub;
  hub.publishState(text("state "));
  hub.publishFrame(text("frame "));

  EXPECT_THAT(hub.join()->take(), Optional(std::string("state ")));
}

TEST(AHub, TakesNoMoreBrowsersThanItHasPlacesFor) {
  EventHub hub;
  std::vector<std::shared_ptr<EventStream>> streams;
  for (std::size_t count = 0; count < EventHub::mostBrowsers; ++count) {
    streams.push_back(hub.join());
    ASSERT_NE(streams.back(), nullptr);
  }

  EXPECT_EQ(hub.join(), nullptr);
  streams.pop_back();
  EXPECT_NE(hub.join(), nullptr) << "one has left";
}

TEST(AHub, ThatIsClosedEndsAllStreamsAlsoLaterOnes) {
  EventHub hub;
  const auto stream = hub.join();

  hub.close();

  EXPECT_EQ(stream->take(), std::nullopt);
  EXPECT_EQ(hub.join()->take(), std::nullopt);
}

}  // namespace
