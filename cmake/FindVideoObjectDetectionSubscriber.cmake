# SPDX-FileCopyrightText: 2026 The tarnvod authors
# SPDX-License-Identifier: MIT

# Finds the platform library of a device's SDK and imports it as tarnvod::platform. Looks where the cache or environment
# variable VOD_SDK_ROOT points, then in the usual places.
set(VOD_SDK_ROOT "$ENV{VOD_SDK_ROOT}" CACHE PATH "Root of the device SDK that holds video_object_detection_subscriber")

find_path(VideoObjectDetectionSubscriber_INCLUDE_DIR video_object_detection_subscriber.h
          HINTS "${VOD_SDK_ROOT}" PATH_SUFFIXES include usr/include)
find_library(VideoObjectDetectionSubscriber_LIBRARY video_object_detection_subscriber
             HINTS "${VOD_SDK_ROOT}" PATH_SUFFIXES lib usr/lib)
mark_as_advanced(VideoObjectDetectionSubscriber_INCLUDE_DIR VideoObjectDetectionSubscriber_LIBRARY)

include(FindPackageHandleStandardArgs)
find_package_handle_standard_args(VideoObjectDetectionSubscriber
  REQUIRED_VARS VideoObjectDetectionSubscriber_LIBRARY VideoObjectDetectionSubscriber_INCLUDE_DIR
  REASON_FAILURE_MESSAGE "Set VOD_SDK_ROOT to the device SDK's root.")

if(VideoObjectDetectionSubscriber_FOUND AND NOT TARGET tarnvod::platform)
  add_library(tarnvod::platform SHARED IMPORTED GLOBAL)
  set_target_properties(tarnvod::platform PROPERTIES
    IMPORTED_LOCATION "${VideoObjectDetectionSubscriber_LIBRARY}"
    INTERFACE_INCLUDE_DIRECTORIES "${VideoObjectDetectionSubscriber_INCLUDE_DIR}")
endif()
