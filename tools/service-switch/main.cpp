// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

// The tarnvod command in one process with the host platform's service, which standard input takes down and brings up
// again: one word a line, "down" or "up". Shows, in the demonstration and in tests, what an outage looks like.

#include "command_line.h"

#include <vod_host.h>

#include <iostream>
#include <string>
#include <thread>

namespace {

void switchService() {
  for (std::string word; std::cin >> word;) {
    if (word == "down") {
      vod::host::takeServiceDown();
    } else if (word == "up") {
      vod::host::bringServiceUp();
    } else {
      std::cerr << "tarnvod-service-switch: '" << word << "' is neither 'down' nor 'up'\n";
    }
  }
}

}  // namespace

int main(int argc, char** argv) {
  // Standard input may stay open for longer than the command runs.
  std::thread(switchService).detach();
  const int code = tarn::command::run(argc, argv);
  std::cout.flush();
  std::_Exit(code);
}
