// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "client.h"

#include <limits>

namespace vod::host {
namespace {

/** What `get_information` answered; freed at the end. */
struct Answer {
  explicit Answer(const Client& client)
      : result(video_object_detection_subscriber_get_information(client.handle(), &bytes, &length, &error)) {}
  ~Answer() {
    std::free(bytes);
    std::free(error);
  }
  Answer(const Answer&) = delete;
  Answer& operator=(const Answer&) = delete;

  std::string text() const { return {bytes, bytes + length}; }

  std::uint8_t* bytes = nullptr;
  std::size_t length = 99;
  char* error = nullptr;
  int result;
};

class DetectorInformation : public HostTest {};

TEST_F(DetectorInformation, IsGivenToSubscribersThatNeverSubscribe) {
  channel(0).detectorInformation(std::string("a\0b", 3));
  channel(1).detectorInformation("other");
  const Client client(0);
  const Answer answer(client);
  EXPECT_EQ(answer.result, 0);
  EXPECT_EQ(answer.text(), std::string("a\0b", 3));
  EXPECT_EQ(answer.error, nullptr);
  const Client other(1);
  EXPECT_EQ(Answer(other).text(), "other");
}

TEST_F(DetectorInformation, IsEmptyUntilItIsSet) {
  const Client client(0);
  const Answer answer(client);
  EXPECT_EQ(answer.result, 0);
  EXPECT_NE(answer.bytes, nullptr);
  EXPECT_EQ(answer.length, 0U);
}

TEST_F(DetectorInformation, MayComeWithALengthThatIsNotItsOwn) {
  constexpr std::size_t tooLong = std::size_t{std::numeric_limits<std::int32_t>::max()} + 1;
  channel(0).detectorInformation("short").reportedInformationLength(tooLong);
  const Client client(0);
  EXPECT_EQ(Answer(client).length, tooLong);
}

TEST_F(DetectorInformation, MayBeNull) {
  channel(0).detectorInformation("x").nullInformation();
  const Client client(0);
  const Answer answer(client);
  EXPECT_EQ(answer.result, 0);
  EXPECT_EQ(answer.bytes, nullptr);
  EXPECT_EQ(answer.length, 0U);
}

TEST_F(DetectorInformation, IsLeftAloneByACallThatFails) {
  channel(0).detectorInformation("x");
  plan(Fault(Function::GetInformation).failsWith(4));
  const Client client(0);
  const Answer answer(client);
  EXPECT_EQ(answer.result, 4);
  EXPECT_EQ(answer.bytes, nullptr);
  EXPECT_EQ(answer.length, 99U);
}

TEST_F(DetectorInformation, IsRefusedWithATextWhileTheServiceIsDown) {
  const Client client(0);
  takeServiceDown();
  const Answer answer(client);
  EXPECT_NE(answer.result, 0);
  EXPECT_STREQ(answer.error, "the service is down");
}

TEST_F(DetectorInformation, NeedsAPlaceToPutIt) {
  const Client client(0);
  std::size_t length = 0;
  EXPECT_NE(video_object_detection_subscriber_get_information(client.handle(), nullptr, &length, nullptr), 0);
}

}  // namespace
}  // namespace vod::host
