// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

// Sequences of handler calls, frames and faults, decoded from the input: the steps of the fault campaign, compared with
// its model of the registry.

#include "endurance/campaign/world.h"
#include "fuzz_input.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace tarn::fuzz;
  using namespace tarn::test;
  constexpr int mostSteps = 60;
  constexpr std::uint32_t byteRange = 256;
  Input input(data, size);
  const Choose choose = [&input](std::uint32_t bound) {
    const std::uint32_t first = input.byte();
    return (bound <= byteRange ? first : first * byteRange + input.byte()) % bound;
  };
  try {
    World world(anySettings(choose));
    for (int i = 0; i < mostSteps && !input.empty(); ++i) {
      world.step(choose);
    }
    world.end(choose);
    require(world.losses().happened == world.losses().recovered + world.losses().abandoned,
            "a loss is unaccounted for");
  } catch (const std::exception& error) {
    require(false, error.what());
  }
  return 0;
}
