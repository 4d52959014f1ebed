// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_TESTS_ENDURANCE_INTERLEAVINGS_WORLDS_H
#define TARNVOD_TESTS_ENDURANCE_INTERLEAVINGS_WORLDS_H

#include "scheduler.h"

#include <functional>
#include <string>
#include <vector>

namespace tarn::test {

/** How the process of a world's run ends. */
enum class Ending {
  Returns,  ///< all threads end, and the world's epilogue finds everything as it should be
  Exits,    ///< one of the actors ends the process, which ends with status 0
  Aborts,   ///< one of the actors ends the process, which the retry thread that still runs turns into an abort
};

/** Two or three threads that meet in the library. */
struct World {
  std::string name;
  Ending ending = Ending::Returns;
  /** @param fail  reports what must not be and does not return */
  std::function<Script(const Scheduler::Failure& fail)> script;
  bool hasCamera = false;  ///< a `Camera`, which makes for many more schedules
};

/** All worlds. */
const std::vector<World>& worlds();

/** Those in which a `Camera` ends while others call it. */
std::vector<World> cameraWorlds();

}  // namespace tarn::test

#endif
