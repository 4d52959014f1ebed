// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "support/system_log.h"

#include "support/retry_sleep.h"

#include <gmock/gmock.h>

#include <ctime>
#include <thread>

namespace {

using tarn::test::LogLine;
using tarn::test::RetrySleep;
using tarn::test::SystemLog;
using testing::ElementsAre;
using testing::IsEmpty;

TEST(ASystemLog, SeesPriorityAndFormattedText) {
  const SystemLog log;
  syslog(LOG_WARNING, "%s for camera %i\n", "trouble", 3);
  EXPECT_THAT(log.lines(), ElementsAre(LogLine{LOG_WARNING, "trouble for camera 3\n"}));
  EXPECT_EQ(log.count({LOG_WARNING, "trouble for camera 3\n"}), 1U);
}

TEST(ASystemLog, StartsEmpty) {
  syslog(LOG_ERR, "before");
  EXPECT_THAT(SystemLog().lines(), IsEmpty());
}

TEST(ASystemLog, CanBeWaitedFor) {
  const SystemLog log;
  std::thread other([] { syslog(LOG_ERR, "from another thread"); });
  EXPECT_THAT(log.waitForLines(1), ElementsAre(LogLine{LOG_ERR, "from another thread"}));
  other.join();
}

TEST(AControlledRetrySleep, DoesNotTouchSleepsOutsideTheLibrary) {
  const RetrySleep control;
  const timespec aMoment{0, 1};
  EXPECT_EQ(nanosleep(&aMoment, nullptr), 0);
  EXPECT_THAT(control.requested(), IsEmpty());
}

}  // namespace
