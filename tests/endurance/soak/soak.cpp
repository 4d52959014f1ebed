// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

// Frames at a high rate for as long as asked, while subscriptions are dropped, updated, torn down and retried. At the
// end every frame must be accounted for, and the process must hold no more than at the beginning.

#include "endurance/soak/feed.h"
#include "endurance/soak/process_hooks.h"

#include <CLI/CLI.hpp>
#include <poll.h>
#include <schedule/process_resources.h>
#include <tarnvod/handler.h>
#include <vod_host.h>

#include <chrono>
#include <condition_variable>
#include <deque>
#include <iostream>
#include <mutex>
#include <string>
#include <thread>

namespace {

using namespace tarn::test;
using tarn::VOD::Handler;
using Clock = std::chrono::steady_clock;
using Resources = vod::schedule::ProcessResources;

struct Options {
  std::int64_t frames = 10'000'000;
  int cameras = 4;
  std::size_t allowedGrowth = 4096;
};

Options parse(int argc, char** argv) {
  CLI::App app("Delivers frames for as long as asked and accounts for each", "soak");
  Options options;
  app.add_option("--frames", options.frames, "How many frames must be delivered")->check(CLI::PositiveNumber);
  app.add_option("--cameras", options.cameras, "How many cameras deliver them")->check(CLI::Range(2, 8));
  app.add_option("--allowed-growth", options.allowedGrowth, "How much the resident memory may grow, in kB");
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    std::exit(app.exit(error));
  }
  return options;
}

/** Runs the feeds until each has delivered so many frames in all. */
class Run {
 public:
  Run(std::deque<Feed>& feeds, std::int64_t framesEach) : feeds_(feeds) {
    for (Feed& feed : feeds) {
      threads_.emplace_back([this, &feed, framesEach] {
        feed.sendUntilDelivered(framesEach, stopped_);
        const std::lock_guard lock(mutex_);
        ++finished_;
        changed_.notify_all();
      });
    }
  }

  /** @return false when a camera did not get a frame for a minute although frames are sent */
  bool finish() {
    std::unique_lock lock(mutex_);
    std::int64_t before = -1;
    while (!changed_.wait_for(lock, std::chrono::minutes(1), [this] { return finished_ == feeds_.size(); })) {
      const std::int64_t now = delivered();
      if (now == before) {
        stopped_ = true;
      }
      before = now;
    }
    lock.unlock();
    for (std::thread& thread : threads_) {
      thread.join();
    }
    return !stopped_;
  }

 private:
  std::int64_t delivered() const {
    std::int64_t sum = 0;
    for (const Feed& feed : feeds_) {
      sum += feed.deliveredSoFar();
    }
    return sum;
  }

  std::deque<Feed>& feeds_;
  std::atomic<bool> stopped_ = false;
  std::vector<std::thread> threads_;
  std::mutex mutex_;
  std::condition_variable changed_;
  std::size_t finished_ = 0;
};

FrameCounts sumOf(const std::deque<Feed>& feeds) {
  FrameCounts sum;
  for (const Feed& feed : feeds) {
    const FrameCounts counts = feed.counts();
    sum.sent += counts.sent;
    sum.received += counts.received;
    sum.delivered += counts.delivered;
    sum.withoutClasses += counts.withoutClasses;
    sum.duringTeardown += counts.duringTeardown;
    sum.unexplained += counts.unexplained;
    sum.wrong += counts.wrong;
  }
  return sum;
}

Resources settled(const std::deque<Feed>& feeds) {
  vod::host::drain();
  for (const Feed& feed : feeds) {
    feed.waitUntilSubscribed();
  }
  // A joined thread stays listed until the kernel is done with it. The sleeps of the C++ library are cut short here.
  constexpr int milliseconds = 200;
  poll(nullptr, 0, milliseconds);
  return vod::schedule::processResources();
}

void print(const FrameCounts& counts, const Disturbances& disturbances) {
  std::cout << counts.sent << " frames sent; " << counts.sent - counts.received << " while nobody was subscribed, "
            << counts.received << " received = " << counts.delivered << " delivered + " << counts.duringTeardown
            << " dropped because their camera was being torn down + " << counts.unexplained << " unexplained\n"
            << counts.withoutClasses << " delivered without detections, because a retry had met an outage\n"
            << disturbances.drops << " subscriptions dropped, " << disturbances.outages << " outages, "
            << disturbances.teardowns << " teardowns, " << disturbances.updates << " updates, " << logLines()
            << " lines logged\n";
}

std::string described(const Resources& resources) {
  return std::to_string(resources.resident / 1024) + " kB resident, " + std::to_string(resources.descriptors) +
         " descriptors, " + std::to_string(resources.threads) + " threads";
}

bool expect(bool holds, const char* what) {
  if (!holds) {
    std::cerr << "soak: " << what << '\n';
  }
  return holds;
}

bool soak(const Options& options) {
  Disturbances disturbances;
  std::deque<Feed> feeds;
  for (int camera = 1; camera <= options.cameras; ++camera) {
    feeds.emplace_back(camera, options.cameras, disturbances);
  }
  Handler::initialize(1);
  const std::int64_t each = options.frames / options.cameras + 1;
  const auto begin = Clock::now();
  bool ok = expect(Run(feeds, each / 10).finish(), "a camera was not recovered within a minute");
  const Resources before = settled(feeds);
  ok = ok && expect(Run(feeds, each).finish(), "a camera was not recovered within a minute");
  const std::chrono::duration<double> seconds = Clock::now() - begin;
  const Resources after = settled(feeds);
  Handler::deinitialize();
  for (int camera = 1; camera <= options.cameras; ++camera) {
    Handler::teardown(camera);
  }

  const FrameCounts counts = sumOf(feeds);
  print(counts, disturbances);
  const double rate = static_cast<double>(counts.delivered) / seconds.count();
  std::cout << "after a tenth of the run: " << described(before) << "\nat its end: " << described(after) << '\n'
            << seconds.count() << " s, " << static_cast<std::int64_t>(rate) << " frames delivered per second\n";
  ok = expect(counts.wrong == 0, "frames arrived that are not what was sent") && ok;
  ok = expect(counts.unexplained == 0, "frames were dropped for no reason") && ok;
  ok = expect(counts.received == counts.delivered + counts.duringTeardown, "frames are not accounted for") && ok;
  ok = expect(after.resident <= before.resident + options.allowedGrowth * 1024, "memory grew") && ok;
  ok = expect(after.descriptors == before.descriptors, "the number of descriptors changed") && ok;
  ok = expect(after.threads == before.threads, "the number of threads changed") && ok;
  return expect(vod::host::liveSubscribers() == 0, "subscribers are left") && ok;
}

}  // namespace

int main(int argc, char** argv) {
  const Options options = parse(argc, argv);
  try {
    return soak(options) ? 0 : 1;
  } catch (const std::exception& error) {
    std::cerr << "soak: " << error.what() << '\n';
    return 1;
  }
}
