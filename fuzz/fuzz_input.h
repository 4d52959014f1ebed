// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_FUZZ_FUZZ_INPUT_H
#define TARNVOD_FUZZ_FUZZ_INPUT_H

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

/** One run over one input: every fuzzer defines it, libFuzzer or the replay program calls it. */
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace tarn::fuzz {

/** Ends the run as a finding unless the condition holds. */
inline void require(bool condition, const std::string& what) {
  if (!condition) {
    std::fprintf(stderr, "finding: %s\n", what.c_str());
    std::abort();
  }
}

/** Takes an input apart from its front; beyond its end there are zeros. */
class Input {
 public:
  Input(const std::uint8_t* data, std::size_t size) : data_(data), size_(size) {}

  bool empty() const { return size_ == 0; }

  std::uint8_t byte() {
    if (size_ == 0) {
      return 0;
    }
    --size_;
    return *data_++;
  }

  /** All that is left. */
  std::string rest() {
    std::string bytes;
    if (size_ != 0) {
      bytes.assign(reinterpret_cast<const char*>(data_), size_);
    }
    size_ = 0;
    return bytes;
  }

 private:
  const std::uint8_t* data_;
  std::size_t size_;
};

}  // namespace tarn::fuzz

#endif
