/* SPDX-FileCopyrightText: 2026 The tarnvod authors */
/* SPDX-License-Identifier: MIT */

#include "sdk_service.h"

#include <stdlib.h>
#include <string.h>
#include <video_object_detection_subscriber.h>

enum { CHANNELS = 4, REGION_SIZE = 64 };

struct sdk_subscriber {
  unsigned int channel;
  void* user_data;
  void (*detection)(const char* data, size_t size, void* user_data);
};

static struct sdk_subscriber* subscribed[CHANNELS];
static char regions[CHANNELS][REGION_SIZE];
static size_t region_sizes[CHANNELS];
static char* information;
static size_t information_size;

static char* copy(const char* data, size_t size) {
  char* const bytes = malloc(size + 1);
  if (bytes != NULL && size > 0) {
    memcpy(bytes, data, size);
  }
  return bytes;
}

void sdk_service_set_information(const char* data, size_t size) {
  free(information);
  information = copy(data, size);
  information_size = size;
}

int sdk_service_send(unsigned int channel, const char* data, size_t size) {
  if (channel >= CHANNELS || subscribed[channel] == NULL) {
    return -1;
  }
  subscribed[channel]->detection(data, size, subscribed[channel]->user_data);
  return 0;
}

const char* sdk_service_region(unsigned int channel, size_t* size) {
  *size = region_sizes[channel];
  return regions[channel];
}

int video_object_detection_subscriber_create(video_object_detection_subscriber_st** subscriber, void* user_data,
                                             unsigned int channel) {
  if (channel >= CHANNELS) {
    return -1;
  }
  *subscriber = calloc(1, sizeof **subscriber);
  if (*subscriber == NULL) {
    return -1;
  }
  (*subscriber)->channel = channel;
  (*subscriber)->user_data = user_data;
  return 0;
}

int video_object_detection_subscriber_delete(video_object_detection_subscriber_st** subscriber) {
  video_object_detection_subscriber_unsubscribe(*subscriber);
  free(*subscriber);
  *subscriber = NULL;
  return 0;
}

int video_object_detection_subscriber_subscribe(video_object_detection_subscriber_st* subscriber) {
  subscribed[subscriber->channel] = subscriber;
  return 0;
}

int video_object_detection_subscriber_unsubscribe(video_object_detection_subscriber_st* subscriber) {
  if (subscribed[subscriber->channel] == subscriber) {
    subscribed[subscriber->channel] = NULL;
  }
  return 0;
}

int video_object_detection_subscriber_set_get_detection_callback(video_object_detection_subscriber_st* subscriber,
                                                                 void (*callback)(const char* data, size_t size,
                                                                                  void* user_data)) {
  subscriber->detection = callback;
  return 0;
}

int video_object_detection_subscriber_set_teardown_callback(video_object_detection_subscriber_st* subscriber,
                                                            void (*callback)(void* user_data)) {
  return subscriber != NULL && callback != NULL ? 0 : -1;
}

int video_object_detection_subscriber_set_receive_empty_hits(video_object_detection_subscriber_st* subscriber,
                                                             int enabled) {
  return subscriber != NULL && enabled == 1 ? 0 : -1;
}

int video_object_detection_subscriber_use_channel_configuration(video_object_detection_subscriber_st* subscriber,
                                                                unsigned char enabled) {
  return subscriber != NULL && enabled == 1 ? 0 : -1;
}

int video_object_detection_set_channel_configuration(unsigned short channel, const char* data, unsigned int size,
                                                     char** error) {
  (void)error;
  if (channel >= CHANNELS || size > REGION_SIZE) {
    return -1;
  }
  memcpy(regions[channel], data, size);
  region_sizes[channel] = size;
  return 0;
}

int video_object_detection_subscriber_get_information(video_object_detection_subscriber_st* subscriber, char** data,
                                                      unsigned int* size, char** error) {
  (void)error;
  *data = subscriber != NULL ? copy(information, information_size) : NULL;
  *size = (unsigned int)information_size;
  return *data != NULL ? 0 : -1;
}

int video_object_detection_subscriber_get_nbr_channels(int* count) {
  *count = CHANNELS;
  return 0;
}

int video_object_detection_subscriber_get_nbr_channels_simultaneously(unsigned short* count) {
  *count = 2;
  return 0;
}

int video_object_detection_subscriber_get_version(unsigned int* major, uint8_t* minor) {
  *major = 7;
  *minor = 65;
  return 0;
}

int video_object_detection_subscriber_service_is_enabled(void) {
  return 1;
}
