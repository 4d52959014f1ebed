// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_COMMAND_HTTP_HOST_H
#define TARNVOD_COMMAND_HTTP_HOST_H

#include <string>

namespace tarn::command {

/** Host and port as they stand in a URL: "127.0.0.1:80", "[::1]:80". */
std::string hostAndPort(const std::string& host, int port);

/**
 * Whether the `Host` of a request names a server that listens at this address. Names are refused, apart from
 * `localhost` and the address itself, because anybody can let a name lead here. A server that listens at every address
 * of the machine cannot know them all; it takes any that is written in numbers.
 */
bool isHostOf(const std::string& requested, const std::string& address, int port);

}  // namespace tarn::command

#endif
