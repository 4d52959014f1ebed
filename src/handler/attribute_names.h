// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_HANDLER_ATTRIBUTE_NAMES_H
#define TARNVOD_HANDLER_ATTRIBUTE_NAMES_H

#include "handler/handler_state.h"

#include <map>
#include <set>
#include <string>

namespace tarn::VOD {

/**
 * Asks a camera's detector for the names of its attributes again. The known names are forgotten first, so that a
 * failure leaves none.
 *
 * @throw std::runtime_error  when the camera is not subscribed and the service cannot be reached
 */
void refreshAttributeNames(const HandlerLock& lock, int camera) TARNVOD_REQUIRES(handlerMutex);

/**
 * The names of a camera's attribute types, each with the names of its values. Asks the detector only when they are not
 * known.
 *
 * @throw std::runtime_error  as `refreshAttributeNames`
 */
std::map<std::string, std::set<std::string>> supportedAttributes(const HandlerLock& lock, int camera)
    TARNVOD_REQUIRES(handlerMutex);

}  // namespace tarn::VOD

#endif
