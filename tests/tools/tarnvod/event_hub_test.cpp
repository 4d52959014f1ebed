// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "http/event_hub.h"

#include "records/frame_json.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>
#include <string>

using tarn::command::EventHub;
using tarn::command::EventStream;
using tarn::command::EventText;
using tarn::command::EventWaiter;

namespace {

EventText text(const std::string& words) {
  return std::make_shared<const std::string>(words);
}

TEST(AnEvent, IsWrittenAsBrowsersReadIt) {
  EXPECT_EQ(*tarn::command::makeEvent("frame", R"({"camera":1})", 5), "event: frame\nid: 5\ndata: {\"camera\":1}\n\n");
}

TEST(AnEvent, NeverHoldsALineEndOfANameInIt) {
  const tarn::VOD::Data detection{0, 0, 0, 0, 7, "a\n\nevent: b", 80, tarn::VOD::DetectionStatus::Untracked, {}, {}};
  const tarn::VOD::DetectionData frame{0, {detection}, {}};

  const std::string event = *tarn::command::makeEvent("frame", tarn::command::frameJson(frame, 1), 5);

  EXPECT_THAT(event, testing::HasSubstr(R"("className":"a\n\nevent: b")"));
  EXPECT_EQ(event.find("\n\n"), event.size() - 2);
}

/** A stream for a reader that is woken by hand. */
struct Reader {
  explicit Reader(EventStream::Capacity capacity = {4, 1000}) : stream(capacity, waiter()) {}

  EventWaiter waiter() {
    return {[this] { isAsleep = true; }, [this] { isAsleep = false; }};
  }

  /** All that is to be sent now. */
  std::string take(std::size_t bufferSize = 64) {
    std::string all;
    std::string buffer(bufferSize, '\0');
    for (auto count = stream.read(buffer.data(), buffer.size()); count.value_or(0) != 0;
         count = stream.read(buffer.data(), buffer.size())) {
      all.append(buffer, 0, *count);
    }
    return all;
  }

  bool isAsleep = false;
  EventStream stream;
};

/** One read of up to 64 bytes. */
std::optional<std::string> readOf(EventStream& stream) {
  std::string buffer(64, '\0');
  const auto count = stream.read(buffer.data(), buffer.size());
  return count ? std::make_optional(buffer.substr(0, *count)) : std::nullopt;
}

EventWaiter nobody() {
  return {[] {}, [] {}};
}

TEST(AStream, GivesAllThatWaitsTheStateFirst) {
  Reader reader;
  reader.stream.pushFrame(text("1 "));
  reader.stream.pushFrame(text("2 "));
  reader.stream.setState(text("old state "));
  reader.stream.setState(text("state "));

  EXPECT_EQ(reader.take(), "state 1 2 ");
}

TEST(AStream, FitsIntoAnyBuffer) {
  Reader reader;
  reader.stream.pushFrame(text("a long frame "));
  reader.stream.pushFrame(text("another"));

  EXPECT_EQ(reader.take(3), "a long frame another");
}

TEST(AStream, WithoutRoomDropsTheOldestFramesAndReportsHowMany) {
  Reader reader({2, 1000});
  for (const char* frame : {"1 ", "2 ", "3 ", "4 ", "5 "}) {
    reader.stream.pushFrame(text(frame));
  }

  EXPECT_EQ(reader.take(), "event: dropped\ndata: {\"dropped\":3}\n\n4 5 ");
  reader.stream.pushFrame(text("6 "));
  EXPECT_EQ(reader.take(), "6 ") << "the number is sent once";
}

TEST(AStream, HoldsNoMoreBytesThanItHasRoomFor) {
  Reader reader({100, 10});
  for (const char* frame : {"1234 ", "5678 ", "90 "}) {
    reader.stream.pushFrame(text(frame));
  }

  EXPECT_EQ(reader.take(), "event: dropped\ndata: {\"dropped\":1}\n\n5678 90 ");
}

TEST(AStream, DropsAFrameThatNeverFits) {
  Reader reader({100, 10});
  reader.stream.pushFrame(text("far too long "));
  reader.stream.pushFrame(text("short "));

  EXPECT_EQ(reader.take(), "event: dropped\ndata: {\"dropped\":1}\n\nshort ");
}

TEST(AStream, PutsItsReaderToSleepUntilThereIsSomething) {
  Reader reader;
  EXPECT_EQ(readOf(reader.stream), "");
  EXPECT_TRUE(reader.isAsleep);

  reader.stream.pushFrame(text("1 "));
  EXPECT_FALSE(reader.isAsleep);
  EXPECT_EQ(readOf(reader.stream), "1 ");
  EXPECT_FALSE(reader.isAsleep) << "it has read something";
}

TEST(AStream, ThatIsClosedWakesItsReaderAndEnds) {
  Reader reader;
  EXPECT_EQ(readOf(reader.stream), "");

  reader.stream.close();

  EXPECT_FALSE(reader.isAsleep);
  EXPECT_EQ(readOf(reader.stream), std::nullopt);
}

TEST(AHub, GivesFramesToAllWhoJoined) {
  EventHub hub;
  const auto first = hub.join(nobody());
  const auto second = hub.join(nobody());

  hub.publishFrame(text("frame "));

  EXPECT_EQ(readOf(*first), "frame ");
  EXPECT_EQ(readOf(*second), "frame ");
}

TEST(AHub, GivesItsStateToThoseThatJoinLater) {
  EventHub hub;
  hub.publishState(text("state "));
  hub.publishFrame(text("frame "));

  EXPECT_EQ(readOf(*hub.join(nobody())), "state ");
}

TEST(AHub, GivesThePastToThoseThatJoinLaterOnly) {
  EventHub hub;
  const auto before = hub.join(nobody());
  hub.setPast(text("past "));

  EXPECT_EQ(readOf(*hub.join(nobody())), "past ");
  EXPECT_EQ(readOf(*before), "");
}

TEST(AHub, TakesNoMoreBrowsersThanItHasPlacesFor) {
  EventHub hub;
  std::vector<std::shared_ptr<EventStream>> streams;
  for (std::size_t count = 0; count < EventHub::mostBrowsers; ++count) {
    streams.push_back(hub.join(nobody()));
    ASSERT_NE(streams.back(), nullptr);
  }

  EXPECT_EQ(hub.join(nobody()), nullptr);
  streams.pop_back();
  EXPECT_NE(hub.join(nobody()), nullptr) << "one has left";
}

TEST(AHub, ThatIsClosedEndsAllStreamsAlsoLaterOnes) {
  EventHub hub;
  const auto stream = hub.join(nobody());

  hub.close();

  EXPECT_EQ(readOf(*stream), std::nullopt);
  EXPECT_EQ(readOf(*hub.join(nobody())), std::nullopt);
}

}  // namespace
