// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

// Sees the frames that the library delivers: the platform knows nothing of the classes that an application asks for.

#include <dlfcn.h>
#include <tarnvod/handler.h>
#include <vod_host_rehearsal.h>

#include <cstdio>
#include <cstdlib>
#include <memory>
#include <utility>

namespace tarn::VOD {

namespace {

using Setup = bool(int, DetectionCallback, const std::set<std::string>&, const std::optional<VodChannelConfiguration>&);

/** The library's own function. */
Setup& originalSetup() {
  static auto* const setup = [] {
    Dl_info own{};
    const auto replacement = static_cast<Setup*>(&Handler::setup);
    ::dladdr(reinterpret_cast<const void*>(replacement), &own);
    void* const found = own.dli_sname == nullptr ? nullptr : ::dlsym(RTLD_NEXT, own.dli_sname);
    if (found == nullptr) {
      std::fputs("tarnvod rehearse: the library that the application uses cannot be observed\n", stderr);
      std::abort();
    }
    return reinterpret_cast<Setup*>(found);
  }();
  return *setup;
}

DetectionCallback observed(DetectionCallback callback) {
  if (!callback) {
    return callback;
  }
  return [callback = std::move(callback)](std::unique_ptr<DetectionData> frame, int camera) {
    for (const Data& detection : frame->detections) {
      vod::host::noteReceivedClass(camera, detection.className);
    }
    callback(std::move(frame), camera);
  };
}

}  // namespace

bool Handler::setup(int camera, DetectionCallback callback, const std::set<std::string>& classes) {
  return originalSetup()(camera, observed(std::move(callback)), classes, std::nullopt);
}

bool Handler::setup(int camera, DetectionCallback callback, const std::set<std::string>& classes,
                    const std::optional<VodChannelConfiguration>& channelConfiguration) {
  return originalSetup()(camera, observed(std::move(callback)), classes, channelConfiguration);
}

}  // namespace tarn::VOD
