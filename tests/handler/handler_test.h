// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_TESTS_HANDLER_HANDLER_TEST_H
#define TARNVOD_TESTS_HANDLER_HANDLER_TEST_H

#include "handler/inbox.h"
#include "support/retry_sleep.h"
#include "support/system_log.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <tarnvod/tarnvod.h>
#include <vod_host.h>

#include <cstdlib>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace tarn::test {

using VOD::Handler;
using vod::host::Fault;
using vod::host::Function;

/** What the tests' detector knows: human 1, car 5, bus 7; colour 10 (red 1, blue 2), hat 20 (none 1), mood 30 (no
 * value). */
std::string detectorBytes();

/** A scene with one detection of each of these classes, their object ids counted from 1. */
std::string sceneOf(const std::vector<std::uint32_t>& classIds, std::uint64_t timestamp = 0);

/** The library on a fresh host platform whose channels 0 and 1 have the detector above. */
class HandlerTest : public testing::Test {
 protected:
  HandlerTest();

  /** Tears down every camera that a test set up, and sees that no subscriber is left. */
  ~HandlerTest() override;

  /** Sets a camera up that receives into the inbox. */
  bool setUp(int camera, const std::set<std::string>& classes = {"human", "car"},
             const std::optional<VOD::VodChannelConfiguration>& region = std::nullopt);

  /** Starts the retry thread and waits until its first round is over. */
  void retryOnce();

  /** Delivers a scene on the calling thread, and gives what came of it: the class names of each frame that arrived. */
  std::vector<std::vector<std::string>> classesAfter(int camera, const std::string& scene);

  std::vector<std::string> logTexts() const;

  SystemLog log_;
  RetrySleep sleep_;
  Inbox inbox_;
};

/** What the library knows of attributes lasts as long as the process, so some tests need one of their own. */
class AFreshProcess : public HandlerTest {
 protected:
  AFreshProcess() { GTEST_FLAG_SET(death_test_style, "threadsafe"); }

  /** Runs the body of a test there; what fails in it is printed and fails the test. */
  void expectWell(void (*body)()) {
    EXPECT_EXIT(
        {
          body();
          std::_Exit(HasFailure() ? 1 : 0);
        },
        testing::ExitedWithCode(0), "");
  }
};

}  // namespace tarn::test

#endif
