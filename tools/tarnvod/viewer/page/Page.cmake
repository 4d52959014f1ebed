# SPDX-FileCopyrightText: 2026 The tarnvod authors
# SPDX-License-Identifier: MIT

# Sets TARNVOD_VIEW_PAGE to a source file that the build generates: the files of the viewer's page, embedded as text.
set(page_files
  address.js
  answers.js
  boxes.js
  camera.js
  canvas.js
  clock.js
  colours.js
  density.js
  downloads.js
  filters.js
  format.js
  frame_store.js
  heat.js
  history.js
  kept_frames.js
  labels.js
  live.js
  live_camera.js
  live_player.js
  main.js
  page.js
  page.css
  page.html
  picture.js
  picture_input.js
  recording.js
  recording_camera.js
  recording_player.js
  selection.js
  shapes.js
  table.js
  time_window.js
  timeline.js
  timeline_input.js
  timeline_view.js
  tools.js
  viewport.js
  wall.js)
set(page_folder "${CMAKE_CURRENT_SOURCE_DIR}/viewer/page")
set(page_writer "${page_folder}/write_page.cmake")
set(TARNVOD_VIEW_PAGE "${CMAKE_CURRENT_BINARY_DIR}/page_files.cpp")
list(TRANSFORM page_files PREPEND "${page_folder}/" OUTPUT_VARIABLE page_paths)
string(REPLACE ";" "," page_file_list "${page_files}")

add_custom_command(
  OUTPUT "${TARNVOD_VIEW_PAGE}"
  COMMAND "${CMAKE_COMMAND}" -D "files=${page_file_list}" -D "output=${TARNVOD_VIEW_PAGE}" -P "${page_writer}"
  WORKING_DIRECTORY "${page_folder}"
  DEPENDS ${page_paths} "${page_writer}"
  COMMENT "Embedding the viewer's page"
  VERBATIM)
