// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "recordings/recorded_frames.h"
#include "support/scene_builder.h"
#include "support/temporary_folder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <recording/recording_reader.h>
#include <recording/recording_writer.h>
#include <recording/scene_index.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <string>
#include <utility>
#include <variant>

namespace {

std::uint64_t bytesRead = 0;

ssize_t counted(long count) {
  bytesRead += static_cast<std::uint64_t>(std::max(0L, count));
  return static_cast<ssize_t>(count);
}

}  // namespace

// The functions with which files are read, also by the C++ library.
extern "C" ssize_t read(int file, void* buffer, size_t size) {
  return counted(::syscall(SYS_read, file, buffer, size));
}

extern "C" ssize_t pread(int file, void* buffer, size_t size, off_t offset) {
  return counted(::syscall(SYS_pread64, file, buffer, size, offset));
}

namespace {

template <typename Work>
std::uint64_t bytesReadBy(const Work& work) {
  const std::uint64_t before = bytesRead;
  work();
  return bytesRead - before;
}

class ALongRecording : public testing::Test {
 protected:
  static constexpr std::uint64_t frames = 12'800;
  static constexpr std::uint64_t middle = frames / 2;
  static constexpr std::uint64_t last = frames - 1;

  ALongRecording() {
    ::VOD::Scene scene;
    tarn::test::setBox(tarn::test::addDetection(scene, 1), 0.1F, 0.2F, 0.3F, 0.4F);
    const std::string bytes = scene.SerializeAsString();
    vod::recording::RecordingWriter writer(folder_.path(), "");
    for (std::uint64_t number = 0; number < frames; ++number) {
      writer.append(bytes);
    }
  }

  /** As a program does that knows the format. */
  void readScene(std::uint64_t number) const {
    const auto entry = vod::recording::SceneIndex(folder_.path()).at(number);
    ASSERT_TRUE(entry);
    auto stream = vod::recording::openScenes(folder_.path());
    stream->seekg(static_cast<std::streamoff>(entry->offset));
    const auto next = vod::recording::RecordingReader(std::move(stream), "scenes").next();
    const auto* const scene = std::get_if<vod::recording::RecordedScene>(&next);
    ASSERT_NE(scene, nullptr);
    EXPECT_TRUE(matches(*entry, scene->bytes));
  }

  const tarn::test::TemporaryFolder folder_;
};

TEST_F(ALongRecording, IsReadFromItsMiddleAndItsEndWithAsFewBytesAsFromItsBeginning) {
  const auto bytesFor = [this](std::uint64_t number) { return bytesReadBy([&] { readScene(number); }); };
  const std::uint64_t atBeginning = bytesFor(0);
  EXPECT_GT(atBeginning, 0U);
  EXPECT_LT(atBeginning, 20'000U);
  EXPECT_EQ(bytesFor(middle), atBeginning);
  EXPECT_LE(bytesFor(last), atBeginning);
}

TEST_F(ALongRecording, IsShownFromItsMiddleAndItsEndWithAsFewBytesAsFromItsBeginning) {
  const tarn::command::RecordedFrames viewed(folder_.path());
  ASSERT_EQ(viewed.count(), frames);
  const auto bytesFor = [&viewed](std::uint64_t number) {
    return bytesReadBy([&] { EXPECT_EQ(viewed.frames(number, 1).count, 1U); });
  };
  const std::uint64_t atBeginning = bytesFor(0);
  EXPECT_GT(atBeginning, 0U);
  EXPECT_LT(atBeginning, 20'000U);
  EXPECT_EQ(bytesFor(middle), atBeginning);
  EXPECT_LE(bytesFor(last), atBeginning);
}

}  // namespace
