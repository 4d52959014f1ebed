// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_HANDLER_SUBSCRIBE_CHANNEL_H
#define TARNVOD_HANDLER_SUBSCRIBE_CHANNEL_H

#include "handler/handler_state.h"

#include <tarnvod/handler.h>

#include <optional>
#include <set>
#include <string>

namespace tarn::VOD {

/**
 * Subscribes a camera, or updates the callback and the classes of one that is subscribed already. A failure is logged
 * and the camera parked among the pending ones.
 *
 * @param callback  moved from; destroyed by the caller, after it has released the lock
 * @return whether the camera is subscribed
 * @throw std::system_error, std::bad_alloc, what copying the callback throws  and then nothing of this attempt is left
 */
bool subscribeChannel(const HandlerLock& lock, DiscardedSubscriptions& discarded, int camera,
                      DetectionCallback& callback, const std::set<std::string>& classes,
                      const std::optional<VodChannelConfiguration>& channelConfiguration)
    TARNVOD_REQUIRES(handlerMutex);

}  // namespace tarn::VOD

#endif
