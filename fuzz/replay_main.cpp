// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

// Runs a fuzzer over the files of the named folders, once each: what was found stays found, with any compiler.

#include "fuzz_input.h"

#include <exception>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <stdexcept>
#include <vector>

namespace {

std::vector<char> contentOf(const std::filesystem::path& file) {
  std::ifstream stream(file, std::ios::binary);
  if (!stream) {
    throw std::runtime_error(file.string() + ": cannot be read");
  }
  return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

int replay(const std::filesystem::path& folder) {
  int inputs = 0;
  for (const auto& entry : std::filesystem::directory_iterator(folder)) {
    std::cout << entry.path().string() << std::endl;  // at once: the last line names the input that ended the program
    const std::vector<char> content = contentOf(entry.path());
    LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(content.data()), content.size());
    ++inputs;
  }
  return inputs;
}

}  // namespace

int main(int argc, char** argv) {
  try {
    int inputs = 0;
    for (int i = 1; i < argc; ++i) {
      inputs += replay(argv[i]);
    }
    if (inputs == 0) {
      std::cerr << argv[0] << ": no inputs; name folders that hold some\n";
      return 1;
    }
    std::cout << inputs << " inputs replayed\n";
    return 0;
  } catch (const std::exception& error) {
    std::cerr << argv[0] << ": " << error.what() << '\n';
    return 1;
  }
}
