# SPDX-FileCopyrightText: 2026 The tarnvod authors
# SPDX-License-Identifier: MIT

# cmake -DSOURCE=FILE -P mark_frame_functions.cmake: puts TARNVOD_EACH_FRAME before those generated functions that run with
# each frame: what parses, makes and destroys the messages of a scene. All others may be optimised for size.
set(messages Scene Detection Attribute Classification Event BoundingBox Segmentation Polygon Point)
file(READ "${SOURCE}" code)
foreach(message IN LISTS messages)
  foreach(function IN ITEMS "${message}" "~${message}" SharedCtor SharedDtor _InternalParse)
    string(REGEX REPLACE "\n((const char\\* |inline void |void )?${message}::${function}\\()" "\nTARNVOD_EACH_FRAME \\1"
      code "${code}")
  endforeach()
endforeach()
file(WRITE "${SOURCE}" "${code}")
