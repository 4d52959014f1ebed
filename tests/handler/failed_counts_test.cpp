// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

// A platform that fills a count in and fails all the same. The program defines these two of its functions itself.

#include "handler/handler_test.h"

extern "C" int video_object_detection_subscriber_get_nbr_channels(std::uint32_t* count) {
  *count = 8;
  return 1;
}

extern "C" int video_object_detection_subscriber_get_nbr_channels_simultaneously(std::uint32_t* count) {
  *count = 3;
  return -1;
}

namespace tarn::test {
namespace {

using AFailedQuery = HandlerTest;

TEST_F(AFailedQuery, ForTheChannelsGivesZeroWhateverThePlatformFilledIn) {
  EXPECT_EQ(Handler::getNumberOfChannels(), 0U);
  EXPECT_EQ(log_.lines().size(), 1U);
}

TEST_F(AFailedQuery, ForTheSimultaneousChannelsGivesZeroWhateverThePlatformFilledIn) {
  EXPECT_EQ(Handler::getNumberOfSimultaneousChannels(), 0U);
  EXPECT_EQ(log_.lines().size(), 1U);
}

}  // namespace
}  // namespace tarn::test
