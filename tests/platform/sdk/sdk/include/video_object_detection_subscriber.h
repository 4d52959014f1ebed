/* SPDX-FileCopyrightText: 2026 The tarnvod authors */
/* SPDX-License-Identifier: MIT */

/* The header of an imagined SDK: the functions that the library calls, declared in another way than this repository
 * does. The integer types differ wherever the interface leaves room, and the callbacks' types have no names. */

#ifndef SDK_VIDEO_OBJECT_DETECTION_SUBSCRIBER_H
#define SDK_VIDEO_OBJECT_DETECTION_SUBSCRIBER_H

#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

typedef struct sdk_subscriber video_object_detection_subscriber_st;

int video_object_detection_subscriber_create(video_object_detection_subscriber_st** subscriber, void* user_data,
                                             unsigned int channel);
int video_object_detection_subscriber_delete(video_object_detection_subscriber_st** subscriber);
int video_object_detection_subscriber_subscribe(video_object_detection_subscriber_st* subscriber);
int video_object_detection_subscriber_unsubscribe(video_object_detection_subscriber_st* subscriber);
int video_object_detection_subscriber_set_get_detection_callback(video_object_detection_subscriber_st* subscriber,
                                                                 void (*callback)(const char* data, size_t size,
                                                                                  void* user_data));
int video_object_detection_subscriber_set_teardown_callback(video_object_detection_subscriber_st* subscriber,
                                                            void (*callback)(void* user_data));
int video_object_detection_subscriber_set_receive_empty_hits(video_object_detection_subscriber_st* subscriber,
                                                             int enabled);
int video_object_detection_subscriber_use_channel_configuration(video_object_detection_subscriber_st* subscriber,
                                                                unsigned char enabled);
int video_object_detection_set_channel_configuration(unsigned short channel, const char* data, unsigned int size,
                                                     char** error);
int video_object_detection_subscriber_get_information(video_object_detection_subscriber_st* subscriber, char** data,
                                                      unsigned int* size, char** error);
int video_object_detection_subscriber_get_nbr_channels(int* count);
int video_object_detection_subscriber_get_nbr_channels_simultaneously(unsigned short* count);
int video_object_detection_subscriber_get_version(unsigned int* major, uint8_t* minor);
int video_object_detection_subscriber_service_is_enabled(void);

#ifdef __cplusplus
}
#endif

#endif
