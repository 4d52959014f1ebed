// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

// An application whose set-up fails, which the library logs. With the argument "openlog" or "openlog-perror" it opens
// the system log itself first.

#include <syslog.h>
#include <tarnvod/handler.h>

#include <string>

int main(int argc, char** argv) {
  const std::string mode = argc > 1 ? argv[1] : "";
  if (mode == "openlog") {
    openlog("own-name", 0, LOG_LOCAL3);
  } else if (mode == "openlog-perror") {
    openlog("own-name", LOG_PERROR, LOG_LOCAL3);
  }
  constexpr int absentCamera = 99;
  const bool works = tarn::VOD::Handler::setup(absentCamera, {}, {});
  tarn::VOD::Handler::teardown(absentCamera);
  return works ? 1 : 0;
}
