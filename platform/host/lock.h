// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef VOD_HOST_LOCK_H
#define VOD_HOST_LOCK_H

#include "support/thread_annotations.h"

#include <mutex>

namespace vod::host {

/** The host platform's mutex and lock: clang checks that what the mutex guards is used only while it is held. */
using Mutex = tarn::VOD::AnnotatedMutex<std::mutex>;
using Lock = tarn::VOD::WaitingLock;

}  // namespace vod::host

#endif
