// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

/**
 * @file
 * The C interface of the camera's video object detection service, as tarnvod calls it.
 *
 * On a device the SDK's own header replaces this one. Both the host platform of this repository and tarnvod
 * itself compile against this contract:
 *
 * - Every function that returns `int` returns 0 on success and anything else on failure.
 * - All functions may be called from any thread, also at the same time for different subscribers.
 * - Callbacks run on threads of the platform. Those of one subscriber, detections and teardown, never run concurrently;
 *   those of different subscribers may. A callback may call every function here, also on its own subscriber.
 * - Channels are counted from 0.
 */

#ifndef VIDEO_OBJECT_DETECTION_SUBSCRIBER_H
#define VIDEO_OBJECT_DETECTION_SUBSCRIBER_H

#include <stdbool.h>
#include <stddef.h>
#include <stdint.h>

#pragma GCC visibility push(default)

#ifdef __cplusplus
extern "C" {
#endif

/** One connection to the service for one channel. Opaque; created by create and released by delete. */
typedef struct video_object_detection_subscriber video_object_detection_subscriber_st;

/**
 * Receives one analysed frame.
 *
 * @param buffer     one serialized `VOD.Scene`; owned by the platform and valid until the callback returns
 * @param length     its size in bytes
 * @param user_data  the pointer given to create
 */
typedef void (*video_object_detection_subscriber_detection_callback)(const uint8_t* buffer, int32_t length,
                                                                     void* user_data);

/**
 * Called when the service has ended the subscription: no frame follows. The subscriber itself still has to be deleted;
 * the callback may do so.
 *
 * @param user_data  the pointer given to create
 */
typedef void (*video_object_detection_subscriber_teardown_callback)(void* user_data);

/**
 * Creates a subscriber for a channel; it receives nothing until it subscribes.
 *
 * @param subscriber  receives the new handle, which the caller releases with delete; unchanged or null on failure
 * @param user_data   passed to every callback; must stay valid until delete has returned and no callback runs any more
 * @param channel     the channel, counted from 0
 * @return 0, or non-zero when the service is down or has no such channel
 */
int video_object_detection_subscriber_create(video_object_detection_subscriber_st** subscriber, void* user_data,
                                             int channel);

/**
 * Ends a subscriber, subscribed or not, and releases it. No callback of it starts after the call has returned. Whether
 * the call waits for one that is running on another thread is the platform's choice; called from inside a callback of
 * the same subscriber it does not wait.
 *
 * @param subscriber  the handle's address; the handle is released also when the call fails
 */
int video_object_detection_subscriber_delete(video_object_detection_subscriber_st** subscriber);

/** Starts the delivery of frames. The detection callback may run before this call has returned. */
int video_object_detection_subscriber_subscribe(video_object_detection_subscriber_st* subscriber);

/** Stops the delivery of frames; as for delete, the call may or may not wait for a running callback. */
int video_object_detection_subscriber_unsubscribe(video_object_detection_subscriber_st* subscriber);

/** Sets the function that receives frames; to be called before subscribe. */
int video_object_detection_subscriber_set_get_detection_callback(
    video_object_detection_subscriber_st* subscriber, video_object_detection_subscriber_detection_callback callback);

/** Sets the function that is called when the service ends the subscription; to be called before subscribe. */
int video_object_detection_subscriber_set_teardown_callback(
    video_object_detection_subscriber_st* subscriber, video_object_detection_subscriber_teardown_callback callback);

/** Chooses whether frames without detections are delivered; by default they are not. */
int video_object_detection_subscriber_set_receive_empty_hits(video_object_detection_subscriber_st* subscriber,
                                                             bool enabled);

/** Chooses whether the channel's configuration applies to this subscriber's frames; by default it does not. */
int video_object_detection_subscriber_use_channel_configuration(video_object_detection_subscriber_st* subscriber,
                                                                bool enabled);

/**
 * Sets the configuration of a channel, for all subscribers that use it.
 *
 * @param channel        the channel, counted from 0
 * @param configuration  one serialized `VOD.ChannelConfiguration`; copied
 * @param length         its size in bytes
 * @param error          null, or receives a text allocated with malloc when the call fails; the caller frees it
 */
int video_object_detection_set_channel_configuration(int channel, const uint8_t* configuration, size_t length,
                                                     char** error);

/**
 * Describes the detector of the subscriber's channel; the subscriber need not be subscribed.
 *
 * @param subscriber   a subscriber of the channel
 * @param information  receives one serialized `VOD.DetectorInformation`, allocated with malloc; the caller frees it.
 *                     Nothing to free when the call fails
 * @param length       receives its size in bytes
 * @param error        null, or receives a text allocated with malloc when the call fails; the caller frees it
 */
int video_object_detection_subscriber_get_information(video_object_detection_subscriber_st* subscriber,
                                                      uint8_t** information, size_t* length, char** error);

/** Gets the number of channels. */
int video_object_detection_subscriber_get_nbr_channels(uint32_t* count);

/** Gets the number of channels that can be analysed at the same time. */
int video_object_detection_subscriber_get_nbr_channels_simultaneously(uint32_t* count);

/** Gets the version of the platform's library. */
int video_object_detection_subscriber_get_version(int* major, int* minor);

/** Returns whether the service is enabled on this device. */
bool video_object_detection_subscriber_service_is_enabled(void);

#ifdef __cplusplus
}
#endif

#pragma GCC visibility pop

#endif
