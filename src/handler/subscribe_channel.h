// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_HANDLER_SUBSCRIBE_CHANNEL_H
#define TARNVOD_HANDLER_SUBSCRIBE_CHANNEL_H

#include "handler/handler_state.h"

namespace tarn::VOD {

/**
 * Subscribes a camera, or updates the callback and the classes of one that is subscribed already. A failure is logged
 * and the camera parked among the pending ones.
 *
 * @param request    left as it is when this throws; otherwise moved into the registry, or exchanged with what an
 *                   updated camera had. To be destroyed by the caller after it has released the lock
 * @param discarded  receives the records that others replace
 * @return whether the camera is subscribed
 * @throw std::system_error, std::bad_alloc  and then nothing of this attempt is left
 */
bool subscribeChannel(const HandlerLock& lock, SubscriptionRequest& request, DiscardedSubscriptions& discarded)
    TARNVOD_REQUIRES(handlerMutex);

}  // namespace tarn::VOD

#endif
