// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_HANDLER_PLATFORM_CALLBACKS_H
#define TARNVOD_HANDLER_PLATFORM_CALLBACKS_H

#include <cstdint>

// The two functions that the platform calls, on threads of its own.

namespace tarn::VOD {

/**
 * One analysed frame.
 *
 * @param buffer    one serialized `VOD.Scene`
 * @param length    its size in bytes
 * @param userData  points to the camera number
 */
void onServiceDetection(const std::uint8_t* buffer, std::int32_t length, void* userData);

/**
 * The service has ended a subscription.
 *
 * @param userData  points to the camera number
 */
void onServiceTeardown(void* userData);

}  // namespace tarn::VOD

#endif
