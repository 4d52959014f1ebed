// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

// What is freed is overwritten first, so that whoever uses it afterwards does not find what was there.

#include <malloc.h>

#include <cstdlib>
#include <cstring>
#include <new>

void* operator new(std::size_t size) {
  if (void* const memory = std::malloc(size)) {
    return memory;
  }
  throw std::bad_alloc();
}

void operator delete(void* memory) noexcept {
  if (memory != nullptr) {
    std::memset(memory, 0xDD, malloc_usable_size(memory));
    std::free(memory);
  }
}

void operator delete(void* memory, std::size_t /*size*/) noexcept {
  operator delete(memory);
}
