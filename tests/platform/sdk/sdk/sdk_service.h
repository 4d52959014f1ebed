/* SPDX-FileCopyrightText: 2026 The tarnvod authors */
/* SPDX-License-Identifier: MIT */

/* Functions of the imagined SDK's service for tests, in addition to those of its public header. */

#ifndef SDK_SERVICE_H
#define SDK_SERVICE_H

#include <stddef.h>

#ifdef __cplusplus
extern "C" {
#endif

/** What the service answers about its detector from now on; copied. */
void sdk_service_set_information(const char* data, size_t size);

/** Calls the detection callback of a channel's subscription; 0 if there is one. */
int sdk_service_send(unsigned int channel, const char* data, size_t size);

/** The region of interest that a channel was given last, and its size. */
const char* sdk_service_region(unsigned int channel, size_t* size);

#ifdef __cplusplus
}
#endif

#endif
