// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "video-recorder/tracker.h"

#include <algorithm>
#include <cmath>

namespace recorder {
namespace {

// A sighting that covers less of where a person is expected is of somebody else.
constexpr float leastOverlap = 0.25F;
// How much a new box changes the place and the pace that are known; the rest is the detector's jitter.
constexpr float boxWeight = 0.6F;
constexpr float velocityWeight = 0.3F;
// How far from where somebody was lost, in widths and heights of the box, the same person may appear again.
constexpr float reachInWidths = 2.5F;
constexpr float reachInHeights = 0.6F;
// A person does not change size much while out of sight.
constexpr float largestSizeRatio = 1.4F;

bool isWithinReach(const Box& lost, const Box& found) {
  const float ratio = found.height() / lost.height();
  return std::abs(found.centreX() - lost.centreX()) < reachInWidths * lost.width() &&
         std::abs(found.centreY() - lost.centreY()) < reachInHeights * lost.height() && ratio < largestSizeRatio &&
         ratio > 1 / largestSizeRatio;
}

bool isOutsideImage(const Box& box) {
  return box.centreX() < 0 || box.centreX() > 1 || box.centreY() < 0 || box.centreY() > 1;
}

struct Match {
  std::size_t track = 0;
  std::size_t sighting = 0;
  float overlap = 0;
  bool isConfirmed = false;
};

// Whoever is confirmed chooses first. Pairs that are equal keep their order, so that a run repeats exactly.
void sortByPreference(std::vector<Match>& matches) {
  std::stable_sort(matches.begin(), matches.end(), [](const Match& one, const Match& other) {
    return one.isConfirmed != other.isConfirmed ? one.isConfirmed : one.overlap > other.overlap;
  });
}

}  // namespace

TrackedFrame Tracker::update(const std::vector<Sighting>& sightings) {
  predict();
  const std::vector<Sighting> unmatched = matchKnownPeople(sightings);
  TrackedFrame frame;
  confirm(frame);
  startNewPeople(unmatched);
  forget(frame);
  for (const Track& track : tracks_) {
    if (!isUnseen(track)) {
      frame.people.push_back(track.person);
      frame.people.back().box = clipped(track.person.box);
    }
  }
  return frame;
}

bool Tracker::isLost(const Track& track) const {
  return track.framesUnseen > settings_.framesExpected;
}

bool Tracker::isGone(const Track& track) const {
  if (!track.person.isConfirmed) {
    return track.framesUnseen > 1;
  }
  return isUnseen(track) && (isOutsideImage(track.person.box) ||
                             track.framesUnseen > settings_.framesExpected + settings_.framesRemembered);
}

// Everybody is unseen until matched. Who is lost is not thought to walk on: most such people stand behind something.
void Tracker::predict() {
  for (Track& track : tracks_) {
    ++track.framesUnseen;
    if (!isLost(track)) {
      track.person.box = moved(track.person.box, track.velocityX, track.velocityY);
    }
  }
}

std::vector<Sighting> Tracker::matchKnownPeople(const std::vector<Sighting>& sightings) {
  std::vector<Match> matches;
  for (std::size_t t = 0; t < tracks_.size(); ++t) {
    for (std::size_t s = 0; s < sightings.size(); ++s) {
      const float shared = overlap(tracks_[t].person.box, sightings[s].box);
      if (!isLost(tracks_[t]) && shared >= leastOverlap && sightings[s].margin >= settings_.knownPersonMargin) {
        matches.push_back({t, s, shared, tracks_[t].person.isConfirmed});
      }
    }
  }
  sortByPreference(matches);

  std::vector<bool> isTaken(sightings.size(), false);
  for (const Match& match : matches) {
    if (isUnseen(tracks_[match.track]) && !isTaken[match.sighting]) {
      follow(tracks_[match.track], sightings[match.sighting]);
      isTaken[match.sighting] = true;
    }
  }

  std::vector<Sighting> unmatched;
  for (std::size_t s = 0; s < sightings.size(); ++s) {
    if (!isTaken[s]) {
      unmatched.push_back(sightings[s]);
    }
  }
  return unmatched;
}

void Tracker::follow(Track& track, const Sighting& sighting) {
  const Box expected = track.person.box;
  const auto frames = static_cast<float>(track.framesUnseen);
  track.velocityX += velocityWeight * (sighting.box.centreX() - expected.centreX()) / frames;
  track.velocityY += velocityWeight * (sighting.box.centreY() - expected.centreY()) / frames;
  track.person.box = mixed(sighting.box, expected, boxWeight);
  track.person.margin = sighting.margin;
  track.framesUnseen = 0;
  ++track.sightings;
}

void Tracker::startNewPeople(const std::vector<Sighting>& unmatched) {
  for (const Sighting& sighting : unmatched) {
    if (sighting.margin >= settings_.newPersonMargin) {
      Track track;
      track.person = {++lastId_, sighting.box, sighting.margin, settings_.sightingsToConfirm <= 1};
      tracks_.push_back(track);
    }
  }
}

void Tracker::confirm(TrackedFrame& frame) {
  for (Track& track : tracks_) {
    if (!track.person.isConfirmed && track.sightings >= settings_.sightingsToConfirm) {
      track.person.isConfirmed = true;
      connectWithLost(track, frame);
    }
  }
}

void Tracker::connectWithLost(Track& track, TrackedFrame& frame) {
  const auto distance = [&track](const Track& lost) {
    return std::hypot(track.person.box.centreX() - lost.person.box.centreX(),
                      track.person.box.centreY() - lost.person.box.centreY());
  };
  Track* nearest = nullptr;
  for (Track& lost : tracks_) {
    if (!lost.isConnected && isLost(lost) && isWithinReach(lost.person.box, track.person.box) &&
        (nearest == nullptr || distance(lost) < distance(*nearest))) {
      nearest = &lost;
    }
  }
  if (nearest != nullptr) {
    frame.reappeared.push_back({track.person.id, nearest->person.id});
    nearest->isConnected = true;
  }
}

void Tracker::forget(TrackedFrame& frame) {
  for (const Track& track : tracks_) {
    if (!track.isConnected && isGone(track)) {
      frame.gone.push_back(track.person.id);
    }
  }
  const auto isOver = [this](const Track& track) { return track.isConnected || isGone(track); };
  tracks_.erase(std::remove_if(tracks_.begin(), tracks_.end(), isOver), tracks_.end());
}

}  // namespace recorder
