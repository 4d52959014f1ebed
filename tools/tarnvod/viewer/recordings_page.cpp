// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "viewer/recordings_page.h"

#include "base/stop_signal.h"
#include "recordings/recorded_frames.h"
#include "viewer/self_contained_page.h"

#include <algorithm>
#include <cstdint>

namespace tarn::command {
namespace {

/** The page fetches frames in pieces of so many, and asks for the rest of a piece when an answer has fewer. */
constexpr std::uint64_t framesInPiece = 100;

void addFrames(SelfContainedPage& page, const RecordedFrames& recording, int number) {
  for (std::uint64_t first = 0; first < recording.count();) {
    throwIfStopRequested();
    const std::uint64_t count = std::min(framesInPiece - first % framesInPiece, recording.count() - first);
    const RecordedFrames::Excerpt frames = recording.frames(first, count);
    page.add("/frames.json?recording=" + std::to_string(number) + "&first=" + std::to_string(first) +
                 "&count=" + std::to_string(count),
             frames.json);
    first += frames.count;
  }
}

}  // namespace

RecordingsPage recordingsPage(const std::vector<std::string>& recordings, const PageSetup& setup,
                              const std::string& title) {
  SelfContainedPage page;
  DamageList damage;
  page.add("/setup.json", setupJson(setup));
  int number = 0;
  for (const std::string& folder : recordings) {
    const RecordedFrames recording(folder);
    page.add(pathOfOverview(++number), oneLine(recording.overview()));
    addFrames(page, recording, number);
    if (damage.count() == 0) {
      damage = recording.damage();
    }
  }
  return {page.html(title), damage};
}

}  // namespace tarn::command
