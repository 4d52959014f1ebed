// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_HANDLER_ATTRIBUTE_NAMES_H
#define TARNVOD_HANDLER_ATTRIBUTE_NAMES_H

#include "handler/handler_state.h"

namespace tarn::VOD {

/**
 * Asks for a camera's attribute names anew. What was known is forgotten first, so that a failure leaves none.
 *
 * @throw std::runtime_error  when the camera is not subscribed and the service cannot be reached
 */
void refreshAttributeNames(const HandlerLock& lock, int camera) TARNVOD_REQUIRES(handlerMutex);

}  // namespace tarn::VOD

#endif
