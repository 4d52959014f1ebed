# SPDX-FileCopyrightText: 2026 The tarnvod authors
# SPDX-License-Identifier: MIT

# Sets TARNVOD_VIEW_PAGE to a source file that the build makes: the viewer's page as one text, with its style and its script,
# which is all of these files as one.
set(page_parts page.html page.css)
set(page_scripts
  viewer/page/format.js
  viewer/page/geometry.js
  viewer/page/lives.js
  viewer/page/picture.js
  viewer/page/timeline.js
  viewer/page/filters.js
  viewer/page/camera.js
  viewer/page/live.js
  viewer/page/recording.js
  viewer/page/main.js)
list(TRANSFORM page_parts PREPEND viewer/page/)
set(page_writer "${CMAKE_CURRENT_SOURCE_DIR}/viewer/page/write_page.cmake")
set(TARNVOD_VIEW_PAGE "${CMAKE_CURRENT_BINARY_DIR}/view_page.cpp")
string(REPLACE ";" "," page_script_list "${page_scripts}")

add_custom_command(
  OUTPUT "${TARNVOD_VIEW_PAGE}"
  COMMAND "${CMAKE_COMMAND}" -D "scripts=${page_script_list}" -D "output=${TARNVOD_VIEW_PAGE}" -P "${page_writer}"
  WORKING_DIRECTORY "${CMAKE_CURRENT_SOURCE_DIR}"
  DEPENDS ${page_parts} ${page_scripts} "${page_writer}"
  COMMENT "Making the viewer's page"
  VERBATIM)
