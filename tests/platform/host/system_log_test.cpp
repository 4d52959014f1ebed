// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include <gmock/gmock.h>
#include <sys/stat.h>

#include <array>
#include <cstdio>
#include <string>

namespace {

constexpr const char* line = "Failed to create subscription to vod.\n";

/** What an application writes to standard error when its set-up fails. */
std::string errorsOfTheApplication(const std::string& variables, const std::string& argument = "") {
  const std::string command = "env -u TARNVOD_HOST_RECORDINGS -u TARNVOD_HOST_LOG " + variables +
                              " " TARNVOD_TEST_LOGGING_APPLICATION " " + argument + " 2>&1 >/dev/null";
  FILE* const pipe = ::popen(command.c_str(), "r");
  EXPECT_NE(pipe, nullptr);
  std::string errors;
  std::array<char, 256> block{};
  while (const std::size_t size = std::fread(block.data(), 1, block.size(), pipe)) {
    errors.append(block.data(), size);
  }
  EXPECT_EQ(::pclose(pipe), 0) << errors;
  return errors;
}

std::string logged(const std::string& name) {
  return name + ": " + line;
}

bool systemLogExists() {
  struct stat status {};
  return ::stat("/dev/log", &status) == 0 && S_ISSOCK(status.st_mode);
}

TEST(TheSystemLog, IsCopiedToStandardErrorOnRequest) {
  EXPECT_EQ(errorsOfTheApplication("TARNVOD_HOST_LOG=stderr"), logged("logging_application"));
}

TEST(TheSystemLog, IsNotCopiedOnRequest) {
  EXPECT_EQ(errorsOfTheApplication("TARNVOD_HOST_LOG=syslog"), "");
}

TEST(TheSystemLog, IsCopiedWhereItDoesNotExist) {
  EXPECT_EQ(errorsOfTheApplication(""), systemLogExists() ? "" : logged("logging_application"));
}

TEST(AnApplicationThatOpensTheSystemLog, KeepsItsNameAndOptions) {
  EXPECT_EQ(errorsOfTheApplication("TARNVOD_HOST_LOG=stderr", "openlog-perror"), logged("own-name"));
  EXPECT_EQ(errorsOfTheApplication("TARNVOD_HOST_LOG=stderr", "openlog"), "");
}

TEST(AWrongChoiceOfTheLog, IsRefusedLikeEveryWrongValue) {
  EXPECT_THAT(errorsOfTheApplication("TARNVOD_HOST_LOG=file"),
              testing::StartsWith("video_object_detection_subscriber: TARNVOD_HOST_LOG is \"file\"; it must be "
                                  "\"stderr\" or \"syslog\"\n"));
}

}  // namespace
