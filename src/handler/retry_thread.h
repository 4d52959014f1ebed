// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_HANDLER_RETRY_THREAD_H
#define TARNVOD_HANDLER_RETRY_THREAD_H

// The thread that subscribes cameras again whose set-up failed or that the service dropped.

namespace tarn::VOD {

/** @see Handler::initialize */
void startRetryThread(int period);

/** @see Handler::deinitialize */
void stopRetryThread();

}  // namespace tarn::VOD

#endif
