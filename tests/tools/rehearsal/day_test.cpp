// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "rehearsal/day.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>

using namespace std::chrono_literals;
using tarn::command::drawDay;
using vod::schedule::Fault;
using vod::schedule::Kind;
using vod::schedule::Schedule;

TEST(ADay, IsTheSameForTheSameNumbers) {
  EXPECT_EQ(drawDay(7, 12, 15s), drawDay(7, 12, 15s));
  EXPECT_FALSE(drawDay(7, 12, 15s) == drawDay(7, 13, 15s));
  EXPECT_FALSE(drawDay(7, 12, 15s) == drawDay(8, 12, 15s));
}

TEST(EveryDay, IsAScheduleThatReadsBack) {
  for (std::uint64_t day = 1; day <= 1000; ++day) {
    const Schedule schedule = drawDay(1, day, 15s);
    EXPECT_EQ(vod::schedule::parse(toText(schedule), "day"), schedule) << toText(schedule);
  }
}

TEST(EveryDay, LeavesTimeToRecover) {
  for (std::uint64_t day = 1; day <= 1000; ++day) {
    const Schedule schedule = drawDay(1, day, 15s);
    for (const Fault& fault : schedule.faults) {
      EXPECT_LE(fault.end() + 15s, schedule.length) << toText(schedule);
    }
  }
}

TEST(EveryDay, ChangesNoClassesWhileACallHangs) {
  for (std::uint64_t day = 1; day <= 1000; ++day) {
    const auto faults = drawDay(1, day, 15s).faults;
    for (const Fault& hang : faults) {
      const bool isBroken = std::any_of(faults.begin(), faults.end(), [&hang](const Fault& fault) {
        return hang.kind == Kind::Hang && fault.kind == Kind::Change && hang.at <= fault.at && fault.at <= hang.end();
      });
      EXPECT_FALSE(isBroken) << "day " << day;
    }
  }
}

TEST(EveryDay, EndsWithinThreeMinutesAtTheUsualSpeed) {
  for (std::uint64_t day = 1; day <= 1000; ++day) {
    const Schedule schedule = drawDay(1, day, 15s);
    EXPECT_LE(schedule.length * schedule.rounds / 50, 3min) << toText(schedule);
  }
}

TEST(AThousandDays, BringOutagesOfHours) {
  int outages = 0;
  for (std::uint64_t day = 1; day <= 1000; ++day) {
    for (const Fault& fault : drawDay(1, day, 15s).faults) {
      outages += fault.duration >= 1h ? 1 : 0;
    }
  }
  EXPECT_GT(outages, 0);
  EXPECT_LT(outages, 20);
}

TEST(AHundredDays, BringEveryKindOfFaultAndQuietDays) {
  std::set<Kind> kinds;
  bool quiet = false;
  bool repeated = false;
  for (std::uint64_t day = 1; day <= 100; ++day) {
    const Schedule schedule = drawDay(1, day, 15s);
    quiet = quiet || schedule.faults.empty();
    repeated = repeated || schedule.rounds > 1;
    for (const Fault& fault : schedule.faults) {
      kinds.insert(fault.kind);
    }
  }
  EXPECT_EQ(kinds.size(), std::size(vod::schedule::everyKind));
  EXPECT_TRUE(quiet);
  EXPECT_TRUE(repeated);
}
