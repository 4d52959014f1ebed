// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_COMMAND_DRAWING_H
#define TARNVOD_COMMAND_DRAWING_H

#include "drawing/svg.h"
#include "recordings/detector.h"
#include "recordings/recording_scan.h"
#include "records/box.h"

#include <cstdint>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace tarn::command {

/** How pictures are drawn. */
struct DrawingStyle {
  BoxConvention boxes;
  double aspect = 4.0 / 3.0;  ///< width by height of what the camera sees
  std::string background;     ///< address of an image behind the boxes; empty for none
};

/** The area in which the camera's picture stands, in pixels of the drawing. */
struct Canvas {
  double left = 0;
  double top = 0;
  double width = 0;
  double height = 0;

  double x(double fraction) const { return left + width * fraction; }
  double y(double fraction) const { return top + height * fraction; }
};

inline constexpr double margin = 28;
inline constexpr double headHeight = 76;
inline constexpr double canvasWidth = 960;
inline constexpr double panelWidth = 420;
inline constexpr double drawingWidth = margin + canvasWidth + margin + panelWidth + margin;

Canvas makeCanvas(const DrawingStyle& style);

/** Title, note and the empty picture with its grid. */
std::string drawCanvas(const Canvas& canvas, const DrawingStyle& style, const std::string& title,
                       const std::string& note, double imageOpacity);

/** Where an object was. */
struct TrackPoint {
  double seconds = 0;
  Box box;
  bool beginsStretch = false;  ///< the object was not seen for several frames before
};

/** What became of one object in a recording. */
struct Track {
  std::uint32_t objectId = 0;
  std::string className;
  std::vector<TrackPoint> points;
  std::uint64_t lastFrame = 0;
  std::uint64_t inStretch = 0;  ///< the number of the last point in its stretch, counted from 0
};

/** All tracks of a recording, those that begin first in front. */
struct Tracks {
  std::vector<Track> tracks;
  /** Pairs of objects that the service connected: the same thing, seen again. */
  std::vector<std::pair<std::uint32_t, std::uint32_t>> connected;
  std::uint64_t frames = 0;
  double seconds = 0;
};

/**
 * Reads the tracks of a recording. They have some 50,000 points at most: of a long recording only one of several points is
 * kept, and the ends of each stretch.
 *
 * @throw Failure, vod::recording::RecordingError
 */
Tracks collectTracks(const std::string& folder, const SceneNames& names, const BoxConvention& boxes,
                     DamageList& damage);

svg::Drawing drawTracks(const Tracks& tracks, const std::string& title, const DrawingStyle& style);

/** When objects were seen, to the right of the tracks: a row each, with a bar along the recording's time. */
svg::Drawing drawTimeline(const Tracks& tracks);

svg::Drawing drawFrame(const ::VOD::Scene& scene, const SceneNames& names, const std::string& title,
                       const DrawingStyle& style);

}  // namespace tarn::command

#endif
