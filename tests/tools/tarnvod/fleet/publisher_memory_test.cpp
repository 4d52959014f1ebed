// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "a_fleet.h"
#include "base/allocator.h"

#include <gtest/gtest.h>
#include <malloc.h>
#include <recording/segments.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace {

namespace fs = std::filesystem;

/** Sanitizers have an allocator of their own, which keeps freed memory and records. */
bool allocatesAsTheCLibrary() {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
  return false;
#else
  return true;
#endif
}

constexpr const char* anotherAllocator = "this build has the allocator of a sanitizer";

/** From which memory threads have allocated, as the C library counts. */
std::size_t arenas() {
  char* text = nullptr;
  std::size_t size = 0;
  std::FILE* const stream = ::open_memstream(&text, &size);
  ::malloc_info(0, stream);
  std::fclose(stream);
  const std::unique_ptr<char, decltype(&std::free)> owner(text, std::free);
  const std::string info(text, size);
  std::size_t count = 0;
  for (std::size_t at = info.find("<heap nr="); at != std::string::npos; at = info.find("<heap nr=", at + 1)) {
    ++count;
  }
  return count;
}

void allocateOnThreads() {
  std::vector<std::thread> threads;
  for (int number = 0; number < 4; ++number) {
    threads.emplace_back([] { std::make_unique<std::string>(1000, 'x')->back() = 'y'; });
  }
  std::for_each(threads.begin(), threads.end(), [](std::thread& thread) { thread.join(); });
}

TEST(OneArena, ServesAllThreads) {
  if (!allocatesAsTheCLibrary()) {
    GTEST_SKIP() << anotherAllocator;
  }
  EXPECT_EXIT(
      {
        tarn::command::allocateFromOneArena();
        allocateOnThreads();
        std::exit(arenas() == 1 ? 0 : 1);
      },
      testing::ExitedWithCode(0), "");
}

TEST(OneArena, IsNotWhatThreadsUseByThemselves) {
  if (!allocatesAsTheCLibrary()) {
    GTEST_SKIP() << anotherAllocator;
  }
  EXPECT_EXIT(
      {
        allocateOnThreads();
        std::exit(arenas() > 1 ? 0 : 1);
      },
      testing::ExitedWithCode(0), "");
}

/** Twenty cameras, which send as fast as the publisher takes their frames, and a spool that is soon full. */
class APublisherWithoutABroker : public test::AFleet {
 protected:
  test::Environment playingTwentyCameras() const {
    std::string recordings = recording;
    for (int number = 1; number < 20; ++number) {
      recordings += ":" + recording.string();
    }
    return {"TARNVOD_HOST_RECORDINGS=" + recordings, "TARNVOD_HOST_PACE=max"};
  }

  /** Waits until the spool has begun its segment of this number. */
  void waitForSegment(std::uint64_t number) const {
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(60);
    while (latestSegment() < number) {
      if (std::chrono::steady_clock::now() > deadline) {
        throw std::runtime_error("timed out waiting for segment " + std::to_string(number));
      }
      std::this_thread::yield();
    }
  }

  /** What the process has allocated and touched, in kB: without its files, of which the system may show more at any time. */
  static std::int64_t memoryOf(const test::Process& process) {
    std::ifstream status("/proc/" + std::to_string(process.id()) + "/status");
    for (std::string line; std::getline(status, line);) {
      if (line.rfind("RssAnon:", 0) == 0) {
        return std::stoll(line.substr(8));
      }
    }
    throw std::runtime_error("the process has ended");
  }

 private:
  std::uint64_t latestSegment() const {
    std::uint64_t latest = 0;
    std::error_code error;
    for (const auto& entry : fs::directory_iterator(folder / "spool", error)) {
      latest = std::max(latest, vod::recording::segmentNumber(entry.path().filename().string()).value_or(0));
    }
    return latest;
  }
};

TEST_F(APublisherWithoutABroker, KeepsNothingOfAFrameInMemory) {
  if (!allocatesAsTheCLibrary()) {
    GTEST_SKIP() << anotherAllocator;
  }
  const test::Process process(test::command(), publishing({"--spool-size", "256K"}), playingTwentyCameras());
  waitForSegment(30);
  const std::int64_t before = memoryOf(process);

  waitForSegment(300);  // some 17,000 frames later

  EXPECT_LT(memoryOf(process) - before, 512);
}

}  // namespace
