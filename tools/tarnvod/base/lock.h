// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_COMMAND_LOCK_H
#define TARNVOD_COMMAND_LOCK_H

#include "support/thread_annotations.h"

#include <mutex>

namespace tarn::command {

/** The command's mutex and lock: clang checks that what the mutex guards is used only while it is held. */
using Mutex = VOD::AnnotatedMutex<std::mutex>;
using Lock = VOD::WaitingLock;

}  // namespace tarn::command

#endif
