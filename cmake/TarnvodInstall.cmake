# SPDX-FileCopyrightText: 2026 The tarnvod authors
# SPDX-License-Identifier: MIT

# What is installed, in components: runtime (the library), development (headers, CMake package, pkg-config module), tools
# and host-platform (the host's stand-in for a device's platform library). Nothing that is installed names the folder that
# it was installed to, so a copy can be moved.
include(CMakePackageConfigHelpers)
set(TARNVOD_PACKAGE_DIR "${CMAKE_INSTALL_LIBDIR}/cmake/tarnvod")

install(TARGETS tarnvod EXPORT tarnvodTargets
  LIBRARY COMPONENT runtime NAMELINK_COMPONENT development)
install(EXPORT tarnvodTargets NAMESPACE tarnvod:: DESTINATION "${TARNVOD_PACKAGE_DIR}" COMPONENT development)
install(DIRECTORY "${PROJECT_SOURCE_DIR}/include/tarnvod" TYPE INCLUDE COMPONENT development)
install(FILES "${TARNVOD_MESSAGES_HEADER}" DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}/tarnvod" COMPONENT development)

configure_package_config_file(cmake/tarnvodConfig.cmake.in "${PROJECT_BINARY_DIR}/tarnvodConfig.cmake"
  INSTALL_DESTINATION "${TARNVOD_PACKAGE_DIR}" NO_SET_AND_CHECK_MACRO)
write_basic_package_version_file("${PROJECT_BINARY_DIR}/tarnvodConfigVersion.cmake" COMPATIBILITY SameMinorVersion)
install(
  FILES
    "${PROJECT_BINARY_DIR}/tarnvodConfig.cmake"
    "${PROJECT_BINARY_DIR}/tarnvodConfigVersion.cmake"
    cmake/TarnvodProtobuf.cmake
  DESTINATION "${TARNVOD_PACKAGE_DIR}" COMPONENT development)

if(TARNVOD_PLATFORM STREQUAL "host")
  # The library and the platform stand side by side wherever they are installed.
  set_target_properties(tarnvod PROPERTIES INSTALL_RPATH "$ORIGIN")
  set_target_properties(video_object_detection_subscriber PROPERTIES EXPORT_NAME platform)
  install(TARGETS video_object_detection_subscriber EXPORT tarnvodPlatformTargets LIBRARY COMPONENT host-platform)
  install(EXPORT tarnvodPlatformTargets NAMESPACE tarnvod:: DESTINATION "${TARNVOD_PACKAGE_DIR}" COMPONENT host-platform)
  install(
    FILES
      platform/include/video_object_detection_subscriber.h
      platform/host/include/vod_host.h
      platform/host/include/vod_host_calls.h
    TYPE INCLUDE COMPONENT host-platform)
  set(TARNVOD_PLATFORM_CFLAGS "")
  set(TARNVOD_PLATFORM_LIBS "-lvideo_object_detection_subscriber")
else()
  install(FILES cmake/FindVideoObjectDetectionSubscriber.cmake DESTINATION "${TARNVOD_PACKAGE_DIR}" COMPONENT development)
  cmake_path(GET VideoObjectDetectionSubscriber_LIBRARY PARENT_PATH platform_libdir)
  set(TARNVOD_PLATFORM_CFLAGS "-I${VideoObjectDetectionSubscriber_INCLUDE_DIR}")
  set(TARNVOD_PLATFORM_LIBS "-L${platform_libdir} -lvideo_object_detection_subscriber")
endif()

# The pkg-config module finds the prefix from where it lies itself.
file(RELATIVE_PATH TARNVOD_PREFIX_FROM_MODULE "/${CMAKE_INSTALL_LIBDIR}/pkgconfig" "/")
string(REGEX REPLACE "/$" "" TARNVOD_PREFIX_FROM_MODULE "${TARNVOD_PREFIX_FROM_MODULE}")
configure_file(cmake/tarnvod.pc.in "${PROJECT_BINARY_DIR}/tarnvod.pc" @ONLY)
install(FILES "${PROJECT_BINARY_DIR}/tarnvod.pc" DESTINATION "${CMAKE_INSTALL_LIBDIR}/pkgconfig" COMPONENT development)
