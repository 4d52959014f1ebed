// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "support/allocation_failure.h"

#include <atomic>
#include <cstdlib>
#include <new>

namespace tarn::test {
namespace {

enum class Watch { Nobody, MarkedThread, Everybody };

std::atomic<Watch> watch{Watch::Nobody};
std::atomic<std::size_t> allocations{0};
std::atomic<std::size_t> failing{AllocationFailure::none};
thread_local bool isMarkedThread = false;
thread_local bool isPaused = false;

bool isWatched() {
  const auto watched = isPaused ? Watch::Nobody : watch.load();
  return watched == Watch::Everybody || (watched == Watch::MarkedThread && isMarkedThread);
}

/** Null when this allocation is the one that fails, or when there really is no memory left. */
void* allocate(std::size_t size) noexcept {
  if (isWatched() && ++allocations == failing) {
    return nullptr;
  }
  return std::malloc(size == 0 ? 1 : size);
}

void* allocateOrThrow(std::size_t size) {
  void* const memory = allocate(size);
  if (memory == nullptr) {
    throw std::bad_alloc();
  }
  return memory;
}

}  // namespace

AllocationFailure::AllocationFailure(std::size_t number, Threads threads) : number_(number) {
  allocations = 0;
  failing = number;
  isMarkedThread = true;
  watch = threads == Threads::All ? Watch::Everybody : Watch::MarkedThread;
}

AllocationFailure::~AllocationFailure() {
  watch = Watch::Nobody;
  isMarkedThread = false;
}

void AllocationFailure::pause() {
  isPaused = true;
}

void AllocationFailure::resume() {
  isPaused = false;
}

std::size_t AllocationFailure::count() const {
  return allocations;
}

}  // namespace tarn::test

/** For the leak checker: Protocol Buffers lose the element that they are adding to a list when the list cannot
 * grow. */
extern "C" const char* __lsan_default_suppressions();
extern "C" const char* __lsan_default_suppressions() {
  return "leak:google::protobuf::internal::RepeatedPtrFieldBase::Add";
}

// All forms but the aligned ones, so that no allocation of a sanitizer's own operators is released by ours.
void* operator new(std::size_t size) {
  return tarn::test::allocateOrThrow(size);
}
void* operator new[](std::size_t size) {
  return tarn::test::allocateOrThrow(size);
}
void* operator new(std::size_t size, const std::nothrow_t& /*tag*/) noexcept {
  return tarn::test::allocate(size);
}
void* operator new[](std::size_t size, const std::nothrow_t& /*tag*/) noexcept {
  return tarn::test::allocate(size);
}
void operator delete(void* memory) noexcept {
  std::free(memory);
}
void operator delete[](void* memory) noexcept {
  std::free(memory);
}
void operator delete(void* memory, std::size_t /*size*/) noexcept {
  std::free(memory);
}
void operator delete[](void* memory, std::size_t /*size*/) noexcept {
  std::free(memory);
}
void operator delete(void* memory, const std::nothrow_t& /*tag*/) noexcept {
  std::free(memory);
}
void operator delete[](void* memory, const std::nothrow_t& /*tag*/) noexcept {
  std::free(memory);
}
