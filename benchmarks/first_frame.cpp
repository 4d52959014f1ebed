// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

// A small application of one camera: waits for its first frame and ends. With an argument, prints before that what the process and the
// library in it take of memory, in kB.

#include <tarnvod/handler.h>

#include <atomic>
#include <fstream>
#include <future>
#include <iostream>
#include <memory>
#include <stdexcept>
#include <string>

namespace {

/** The sum of a field over the mappings of files whose names contain a text; over all with an empty text. */
long kilobytes(const std::string& file, const std::string& field) {
  std::ifstream mappings("/proc/self/smaps");
  bool belongs = false;
  long sum = 0;
  for (std::string line; std::getline(mappings, line);) {
    if (line.find(':') > line.find(' ')) {  // the first line of a mapping: its addresses come before any colon
      belongs = line.find(file) != std::string::npos;
    } else if (belongs && line.compare(0, field.size() + 1, field + ':') == 0) {
      sum += std::stol(line.substr(field.size() + 1));
    }
  }
  return sum;
}

void waitForFrame() {
  std::promise<void> came;
  std::atomic<bool> isFirst{true};
  const auto arrive = [&](std::unique_ptr<tarn::VOD::DetectionData> /*frame*/, int /*camera*/) {
    if (isFirst.exchange(false)) {
      came.set_value();
    }
  };
  if (!tarn::VOD::Handler::setup(1, arrive, {"human"})) {
    throw std::runtime_error("camera 1 cannot be set up");
  }
  came.get_future().wait();
  tarn::VOD::Handler::teardown(1);
}

}  // namespace

int main(int argc, char** argv) {
  try {
    waitForFrame();
    if (argc > 1) {
      std::cout << "resident " << kilobytes("", "Rss") << "\nprivate-dirty " << kilobytes("", "Private_Dirty")
                << "\nlibrary-resident " << kilobytes("libtarnvod", "Rss") << "\nlibrary-private-dirty "
                << kilobytes("libtarnvod", "Private_Dirty") << '\n';
    }
  } catch (const std::exception& failure) {
    std::cerr << argv[0] << ": " << failure.what() << '\n';
    return 1;
  }
  return 0;
}
