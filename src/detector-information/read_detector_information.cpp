// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "support/platform_types.h"

#include <syslog.h>
#include <tarnvod/read_detector_information.h>

#include <cstdint>
#include <cstdlib>
#include <limits>
#include <memory>

namespace tarn::VOD {
namespace {

using GetInformation = decltype(video_object_detection_subscriber_get_information);
using InformationPointer = OutParameterType<GetInformation, 1>;
using InformationLength = OutParameterType<GetInformation, 2>;

struct Free {
  void operator()(void* buffer) const { std::free(buffer); }
};

/** A length beyond that of any message is treated like malformed bytes: the message stays empty. */
bool isMessageLength(InformationLength length) {
  constexpr auto longest = static_cast<std::uintmax_t>(std::numeric_limits<int>::max());
  return static_cast<std::uintmax_t>(length) <= longest;  // a negative length becomes a huge one
}

}  // namespace

::VOD::DetectorInformation readDetectorInformation(video_object_detection_subscriber_st* subscriber) {
  InformationPointer information = nullptr;
  InformationLength length = 0;
  if (video_object_detection_subscriber_get_information(subscriber, &information, &length, nullptr) != 0) {
    syslog(LOG_WARNING, "Couldn't read detector information\n");
    return {};
  }
  const std::unique_ptr<void, Free> buffer(information);  // released also when parsing runs out of memory
  ::VOD::DetectorInformation message;
  if (buffer && isMessageLength(length)) {
    // Bytes that are not a valid message are not an error: the result holds what could be read of them.
    static_cast<void>(message.ParseFromArray(buffer.get(), static_cast<int>(length)));
  }
  return message;
}

}  // namespace tarn::VOD
