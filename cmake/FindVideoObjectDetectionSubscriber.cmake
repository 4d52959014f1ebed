# SPDX-FileCopyrightText: 2026 The tarnvod authors
# SPDX-License-Identifier: MIT

# Finds the platform library of a device's SDK and imports it as tarnvod::platform. Where the cache or environment variable
# VOD_SDK_ROOT names the SDK, both halves must be in there, also when CMake looks for everything else in a sysroot: a header
# of one origin with a library of another would build, and fail on the device. Without it the usual places are searched.
set(VOD_SDK_ROOT "$ENV{VOD_SDK_ROOT}" CACHE PATH "Root of the device SDK that holds video_object_detection_subscriber")

set(sdk_search "")
if(VOD_SDK_ROOT)
  set(sdk_search PATHS "${VOD_SDK_ROOT}" NO_DEFAULT_PATH NO_CMAKE_FIND_ROOT_PATH)
endif()
find_path(VideoObjectDetectionSubscriber_INCLUDE_DIR video_object_detection_subscriber.h ${sdk_search}
          PATH_SUFFIXES include usr/include)
find_library(VideoObjectDetectionSubscriber_LIBRARY video_object_detection_subscriber ${sdk_search}
             PATH_SUFFIXES lib usr/lib "lib/${CMAKE_LIBRARY_ARCHITECTURE}" "usr/lib/${CMAKE_LIBRARY_ARCHITECTURE}")
mark_as_advanced(VideoObjectDetectionSubscriber_INCLUDE_DIR VideoObjectDetectionSubscriber_LIBRARY)

set(VideoObjectDetectionSubscriber_MISSING "")
if(NOT VideoObjectDetectionSubscriber_INCLUDE_DIR)
  list(APPEND VideoObjectDetectionSubscriber_MISSING include/video_object_detection_subscriber.h)
endif()
if(NOT VideoObjectDetectionSubscriber_LIBRARY)
  list(APPEND VideoObjectDetectionSubscriber_MISSING lib/libvideo_object_detection_subscriber.so)
endif()
list(JOIN VideoObjectDetectionSubscriber_MISSING " and " VideoObjectDetectionSubscriber_MISSING)
if(VOD_SDK_ROOT)
  set(VideoObjectDetectionSubscriber_MISSING "${VOD_SDK_ROOT} has no ${VideoObjectDetectionSubscriber_MISSING}")
else()
  set(VideoObjectDetectionSubscriber_MISSING "there is no ${VideoObjectDetectionSubscriber_MISSING}")
endif()

include(FindPackageHandleStandardArgs)
find_package_handle_standard_args(VideoObjectDetectionSubscriber
  REQUIRED_VARS VideoObjectDetectionSubscriber_LIBRARY VideoObjectDetectionSubscriber_INCLUDE_DIR
  REASON_FAILURE_MESSAGE "${VideoObjectDetectionSubscriber_MISSING}")

if(VideoObjectDetectionSubscriber_FOUND AND NOT TARGET tarnvod::platform)
  add_library(tarnvod::platform SHARED IMPORTED GLOBAL)
  set_target_properties(tarnvod::platform PROPERTIES
    IMPORTED_LOCATION "${VideoObjectDetectionSubscriber_LIBRARY}"
    INTERFACE_INCLUDE_DIRECTORIES "${VideoObjectDetectionSubscriber_INCLUDE_DIR}")
endif()
