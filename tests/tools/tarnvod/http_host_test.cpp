// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "http/http_host.h"

#include <gtest/gtest.h>

using tarn::command::hostAndPort;
using tarn::command::isHostOf;

namespace {

TEST(AHost, OfALocalViewerIsItsAddressOrLocalhost) {
  EXPECT_TRUE(isHostOf("127.0.0.1:8090", "127.0.0.1", 8090));
  EXPECT_TRUE(isHostOf("localhost:8090", "127.0.0.1", 8090));
  EXPECT_TRUE(isHostOf("[::1]:8090", "::1", 8090));
}

TEST(AHost, ThatIsAnyOtherNameIsRefused) {
  EXPECT_FALSE(isHostOf("camera.example:8090", "127.0.0.1", 8090));
  EXPECT_FALSE(isHostOf("127.0.0.1.example:8090", "127.0.0.1", 8090));
  EXPECT_FALSE(isHostOf("192.0.2.1:8090", "127.0.0.1", 8090));
  EXPECT_FALSE(isHostOf("", "127.0.0.1", 8090));
}

TEST(AHost, WithAnotherPortIsRefused) {
  EXPECT_FALSE(isHostOf("127.0.0.1:80", "127.0.0.1", 8090));
  EXPECT_FALSE(isHostOf("127.0.0.1", "127.0.0.1", 8090));
}

TEST(AHost, NeedsNoPortWhenItIsTheStandardOne) {
  EXPECT_TRUE(isHostOf("127.0.0.1", "127.0.0.1", 80));
  EXPECT_TRUE(isHostOf("[::1]", "::1", 80));
}

TEST(AHost, OfAViewerAtEveryAddressIsAnyInNumbersButNoName) {
  EXPECT_TRUE(isHostOf("192.0.2.1:8090", "0.0.0.0", 8090));
  EXPECT_TRUE(isHostOf("[2001:db8::1]:8090", "::", 8090));
  EXPECT_FALSE(isHostOf("camera.example:8090", "0.0.0.0", 8090));
}

TEST(AHost, IsWrittenWithBracketsWhereItsColonsNeedThem) {
  EXPECT_EQ(hostAndPort("127.0.0.1", 8090), "127.0.0.1:8090");
  EXPECT_EQ(hostAndPort("::1", 8090), "[::1]:8090");
}

}  // namespace
