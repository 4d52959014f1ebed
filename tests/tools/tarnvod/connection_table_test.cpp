// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "http/connection_table.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <vector>

using tarn::command::ConnectionTable;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

/** A table for three connections and 100 bytes of answers, which keeps what it closes. */
class AFullTable : public testing::Test {
 protected:
  std::vector<int> closed;
  ConnectionTable table{{3, 100}, [this](int socket) { closed.push_back(socket); }};
};

TEST_F(AFullTable, ClosesTheOldestConnection) {
  for (int socket = 1; socket <= 3; ++socket) {
    table.add(socket, "192.0.2.1");
  }
  EXPECT_THAT(closed, IsEmpty());

  table.add(4, "192.0.2.1");
  table.add(5, "192.0.2.1");

  EXPECT_THAT(closed, ElementsAre(1, 2));
}

TEST_F(AFullTable, ClosesAConnectionOfTheAddressThatHoldsMost) {
  table.add(1, "192.0.2.1");
  table.add(2, "192.0.2.66");
  table.add(3, "192.0.2.66");

  table.add(4, "192.0.2.66");

  EXPECT_THAT(closed, ElementsAre(2));
}

TEST_F(AFullTable, NeverClosesAStreamOfEvents) {
  table.markStream(table.add(1, "192.0.2.1"));
  table.add(2, "192.0.2.1");
  table.add(3, "192.0.2.1");

  table.add(4, "192.0.2.1");

  EXPECT_THAT(closed, ElementsAre(2));
}

TEST_F(AFullTable, HasRoomAgainWhenAConnectionHasEnded) {
  table.add(1, "192.0.2.1");
  const auto second = table.add(2, "192.0.2.1");
  table.add(3, "192.0.2.1");

  table.remove(second);
  table.add(4, "192.0.2.1");

  EXPECT_THAT(closed, IsEmpty());
}

TEST_F(AFullTable, RefusesAnAnswerAndClosesTheOldestOne) {
  table.add(1, "192.0.2.1");
  EXPECT_TRUE(table.addAnswer(table.add(2, "192.0.2.1"), 60));
  const auto third = table.add(3, "192.0.2.1");

  EXPECT_FALSE(table.addAnswer(third, 60));
  EXPECT_THAT(closed, ElementsAre(2)) << "the first sends no answer";
}

TEST_F(AFullTable, HasRoomForAnAnswerWhenAnotherWasSent) {
  const auto first = table.add(1, "192.0.2.1");
  EXPECT_TRUE(table.addAnswer(first, 60));
  table.remove(first);

  EXPECT_TRUE(table.addAnswer(table.add(2, "192.0.2.1"), 60));
}

TEST_F(AFullTable, SendsASingleAnswerOfAnySize) {
  EXPECT_TRUE(table.addAnswer(table.add(1, "192.0.2.1"), 1000));
}

}  // namespace
