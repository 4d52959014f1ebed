// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "handler/user_data.h"

#include <gtest/gtest.h>

#include <set>

namespace tarn::VOD {
namespace {

constexpr int many = 3 * static_cast<int>(UserDataPool::rest);

TEST(TheUserDataOfASubscription, IsAPointerToTheCameraNumber) {
  const auto pool = std::make_shared<UserDataPool>();
  const auto data = pool->make(-7);
  EXPECT_EQ(*static_cast<const std::int32_t*>(static_cast<const void*>(data.get())), -7);
}

TEST(TheUserDataOfASubscription, IsItsOwnAlsoForTheSameCamera) {
  const auto pool = std::make_shared<UserDataPool>();
  const auto first = pool->make(1);
  EXPECT_NE(first.get(), pool->make(1).get());
}

TEST(TheUserDataOfASubscription, IsNotReusedBeforeManyLaterSubscriptionsHaveEnded) {
  const auto pool = std::make_shared<UserDataPool>();
  auto subscription = pool->make(1);
  const UserData* const ended = subscription.get();
  subscription.reset();
  for (std::size_t later = 0; later < UserDataPool::rest; ++later) {
    ASSERT_NE(pool->make(2).get(), ended) << later;
    ASSERT_EQ(ended->camera, 1) << "still valid, and still the camera's";
  }
  EXPECT_EQ(pool->make(2).get(), ended);
}

TEST(TheUserDataOfASubscription, NeverBelongsToTwoThatLiveAtTheSameTime) {
  const auto pool = std::make_shared<UserDataPool>();
  const auto living = pool->make(1);
  for (int later = 0; later < many; ++later) {
    ASSERT_NE(pool->make(2).get(), living.get());
  }
}

TEST(TheUserDataOfASubscription, TakesBoundedMemoryHoweverOftenACameraIsSubscribedAgain) {
  const auto pool = std::make_shared<UserDataPool>();
  std::set<const UserData*> addresses;
  for (int subscription = 0; subscription < many; ++subscription) {
    addresses.insert(pool->make(1).get());
  }
  EXPECT_LE(addresses.size(), UserDataPool::rest + 1);
}

TEST(TheUserDataOfASubscription, OutlivesThePoolsOtherOwners) {
  auto pool = std::make_shared<UserDataPool>();
  auto data = pool->make(3);
  pool.reset();
  EXPECT_EQ(data->camera, 3);
}

}  // namespace
}  // namespace tarn::VOD
