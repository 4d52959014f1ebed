// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

// The functions that a device's closed library has: each records its call in the journal, applies the faults planned
// for it, and does its work.

// The header serves closed libraries too and marks nothing for export.
#pragma GCC visibility push(default)
#include <video_object_detection_subscriber.h>
#pragma GCC visibility pop

#include "diagnostics.h"
#include "rehearsal/rehearsal.h"
#include "rehearsal/watch.h"
#include "service/service.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <limits>
#include <string>
#include <tuple>
#include <utility>

namespace {

using vod::host::Call;
using vod::host::Function;
using vod::host::Handle;
using vod::host::Service;
using vod::host::ServiceState;
namespace status = vod::host::status;

Service& service() {
  return Service::instance();
}

/** Runs the functions that a test has set for the beginning and the end of each call. */
class ObservedCall {
 public:
  ObservedCall() : leaving_(service().observer.leaving) {
    if (void (*const entering)() = service().observer.entering) {
      entering();
    }
  }
  ~ObservedCall() {
    if (leaving_ != nullptr) {
      leaving_();
    }
  }
  ObservedCall(const ObservedCall&) = delete;
  ObservedCall& operator=(const ObservedCall&) = delete;

 private:
  void (*const leaving_)();
};

/** Exceptions must not leave a C interface: one that is thrown makes the call fail. */
template <typename Work>
int guarded(Function function, Work work) noexcept {
  const ObservedCall observed;
  try {
    vod::host::Rehearsal::beginIfNamed();
    return work();
  } catch (const std::exception& error) {
    vod::host::reportFailure(name(function), error.what());
    return status::outOfMemory;
  }
}

/** The entry of a call in the journal, completed when the call ends. */
class Entry {
 public:
  explicit Entry(Call begun) : call_(std::move(begun)), number_(service().journal.begin(call_)) {}
  ~Entry() {
    call_.result = call_.result.value_or(status::outOfMemory);
    vod::host::Watch::instance().returned(call_);
    service().journal.end(number_, std::move(call_));
  }
  Entry(const Entry&) = delete;
  Entry& operator=(const Entry&) = delete;

  Call& call() { return call_; }

 private:
  Call call_;
  const std::uint64_t number_;
};

Call callOf(Function function) {
  Call call{};
  call.function = function;
  return call;
}

std::optional<int> applyFaults(Function function) {
  return service().faults.apply(function, [] { service().bringUp(); });
}

/** Records the call in the journal and does its work, unless a planned fault replaces it. */
template <typename Work>
int journalled(Call call, Work work) {
  Entry entry(std::move(call));
  const auto code = applyFaults(entry.call().function);
  const int result = code ? *code : work(entry.call());
  entry.call().result = result;
  return result;
}

template <typename Work>
int perform(Call call, Work work) noexcept {
  return guarded(call.function, [&] { return journalled(std::move(call), work); });
}

/** As above, for a call on a subscriber. */
template <typename Work>
int performOn(Handle handle, Call call, Work work) noexcept {
  return guarded(call.function, [&] {
    call.handle = service().describe(handle, call.subscriber);
    return journalled(std::move(call), [&](const Call&) {
      const auto subscriber = service().find(handle);
      return subscriber ? work(subscriber) : status::badHandle;
    });
  });
}

/** Copies the text for the caller, who frees it, unless the caller passed null or there is no text. */
void copyError(char** error, const std::string& text) {
  if (error != nullptr && !text.empty()) {
    *error = ::strdup(text.c_str());
  }
}

int copyInformation(const std::optional<std::string>& bytes, uint8_t** information) {
  if (!bytes) {
    *information = nullptr;
    return status::ok;
  }
  auto* const copy = static_cast<uint8_t*>(std::malloc(std::max<std::size_t>(bytes->size(), 1)));
  if (copy == nullptr) {
    return status::outOfMemory;
  }
  std::copy(bytes->begin(), bytes->end(), copy);
  *information = copy;
  return status::ok;
}

}  // namespace

int video_object_detection_subscriber_create(video_object_detection_subscriber_st** subscriber, void* user_data,
                                             int channel) {
  Call call = callOf(Function::Create);
  call.channel = channel;
  call.userData = user_data;
  return perform(std::move(call),
                 [&](Call& entry) { return service().create(subscriber, user_data, channel, entry.subscriber); });
}

int video_object_detection_subscriber_delete(video_object_detection_subscriber_st** subscriber) {
  return guarded(Function::Delete, [&] {
    Call call = callOf(Function::Delete);
    call.handle = service().describe(subscriber == nullptr ? nullptr : *subscriber, call.subscriber);
    Entry entry(std::move(call));
    const auto code = applyFaults(Function::Delete);
    // Also when a fault makes it fail: the handle is released whatever delete returns.
    const int result = service().release(subscriber);
    entry.call().result = code.value_or(result);
    return *entry.call().result;
  });
}

int video_object_detection_subscriber_subscribe(video_object_detection_subscriber_st* subscriber) {
  return performOn(subscriber, callOf(Function::Subscribe),
                   [](const auto& found) { return service().subscribe(found); });
}

int video_object_detection_subscriber_unsubscribe(video_object_detection_subscriber_st* subscriber) {
  return performOn(subscriber, callOf(Function::Unsubscribe),
                   [](const auto& found) { return service().unsubscribe(found); });
}

int video_object_detection_subscriber_set_get_detection_callback(
    video_object_detection_subscriber_st* subscriber, video_object_detection_subscriber_detection_callback callback) {
  return performOn(subscriber, callOf(Function::SetGetDetectionCallback), [&](const auto& found) {
    found->setDetectionCallback(callback);
    return status::ok;
  });
}

int video_object_detection_subscriber_set_teardown_callback(
    video_object_detection_subscriber_st* subscriber, video_object_detection_subscriber_teardown_callback callback) {
  return performOn(subscriber, callOf(Function::SetTeardownCallback), [&](const auto& found) {
    found->setTeardownCallback(callback);
    return status::ok;
  });
}

int video_object_detection_subscriber_set_receive_empty_hits(video_object_detection_subscriber_st* subscriber,
                                                             bool enabled) {
  Call call = callOf(Function::SetReceiveEmptyHits);
  call.flag = enabled;
  return performOn(subscriber, std::move(call), [&](const auto& found) {
    found->setReceiveEmptyHits(enabled);
    return status::ok;
  });
}

int video_object_detection_subscriber_use_channel_configuration(video_object_detection_subscriber_st* subscriber,
                                                                bool enabled) {
  Call call = callOf(Function::UseChannelConfiguration);
  call.flag = enabled;
  return performOn(subscriber, std::move(call), [&](const auto& found) {
    found->setUseChannelConfiguration(enabled);
    return status::ok;
  });
}

int video_object_detection_set_channel_configuration(int channel, const uint8_t* configuration, size_t length,
                                                     char** error) {
  return guarded(Function::SetChannelConfiguration, [&] {
    // A length beyond that of any message is refused before anything is read.
    const bool isReadable =
        length <= std::size_t{std::numeric_limits<std::int32_t>::max()} && (configuration != nullptr || length == 0);
    Call call = callOf(Function::SetChannelConfiguration);
    call.channel = channel;
    if (isReadable && length > 0) {
      call.bytes.assign(configuration, configuration + length);
    }
    return journalled(std::move(call), [&](const Call& entry) {
      std::string text = "the configuration is null or too long";
      const int result =
          isReadable ? service().setChannelConfiguration(channel, entry.bytes, text) : int{status::badArgument};
      if (result != status::ok) {
        copyError(error, text);
      }
      return result;
    });
  });
}

int video_object_detection_subscriber_get_information(video_object_detection_subscriber_st* subscriber,
                                                      uint8_t** information, size_t* length, char** error) {
  return performOn(subscriber, callOf(Function::GetInformation), [&](const auto& found) {
    if (information == nullptr || length == nullptr) {
      copyError(error, "information and length must not be null");
      return status::badArgument;
    }
    std::optional<std::string> bytes;
    std::size_t reportedLength = 0;
    std::string text;
    const int result = service().information(*found, bytes, reportedLength, text);
    if (result != status::ok) {
      copyError(error, text);
      return result;
    }
    *length = reportedLength;
    return copyInformation(bytes, information);
  });
}

int video_object_detection_subscriber_get_nbr_channels(uint32_t* count) {
  return perform(callOf(Function::GetNbrChannels), [&](Call&) {
    ServiceState::Counts counts{};
    const int result = count == nullptr ? int{status::badArgument} : service().channelCounts(counts);
    if (result == status::ok) {
      *count = counts.channels;
    }
    return result;
  });
}

int video_object_detection_subscriber_get_nbr_channels_simultaneously(uint32_t* count) {
  return perform(callOf(Function::GetNbrChannelsSimultaneously), [&](Call&) {
    ServiceState::Counts counts{};
    const int result = count == nullptr ? int{status::badArgument} : service().channelCounts(counts);
    if (result == status::ok) {
      *count = counts.simultaneously;
    }
    return result;
  });
}

int video_object_detection_subscriber_get_version(int* major, int* minor) {
  return perform(callOf(Function::GetVersion), [&](Call&) {
    if (major == nullptr || minor == nullptr) {
      return status::badArgument;
    }
    service().access([&](const ServiceState& state) {
      *major = state.major;
      *minor = state.minor;
    });
    return status::ok;
  });
}

bool video_object_detection_subscriber_service_is_enabled(void) {
  const int result = perform(callOf(Function::ServiceIsEnabled), [](Call&) {
    int enabled = 0;
    service().access([&](const ServiceState& state) { enabled = state.isEnabled ? 1 : 0; });
    return enabled;
  });
  return result != 0;
}

namespace {

/** Refers to each function in the list, so that the library does not link while one of them is not defined above. */
#define ADDRESS(enumerator, function) &(function),
[[gnu::used]] constexpr auto definitions = std::make_tuple(VOD_HOST_FUNCTIONS(ADDRESS) nullptr);
#undef ADDRESS

}  // namespace
