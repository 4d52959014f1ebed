// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

/**
 * @file
 * The part of the host platform's control interface that a library uses which is loaded in front of an application to
 * observe it while a schedule is executed. Not installed.
 */

#ifndef VOD_HOST_REHEARSAL_H
#define VOD_HOST_REHEARSAL_H

#include <vod_host_calls.h>

#include <string>

namespace vod::host {

/**
 * Notes that the application has received a detection of a class. Does nothing unless a schedule is executed and its
 * journal is written. Thread-safe; may be called from a callback.
 *
 * @param camera  counted from 1
 */
VOD_HOST_EXPORT void noteReceivedClass(int camera, const std::string& className);

}  // namespace vod::host

#endif
