// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "busy_threads.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <array>
#include <charconv>
#include <string_view>

namespace tarn::rehearsal {

namespace {

class Descriptor {
 public:
  explicit Descriptor(int number) : number_(number) {}
  ~Descriptor() {
    if (number_ >= 0) {
      ::close(number_);
    }
  }
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;

  int number() const { return number_; }

 private:
  int number_;
};

bool isBusy(int threads, const char* name) {
  const Descriptor thread(::openat(threads, name, O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  const Descriptor file(::openat(thread.number(), "stat", O_RDONLY | O_CLOEXEC));
  std::array<char, 256> buffer;
  const ssize_t size = ::read(file.number(), buffer.data(), buffer.size());
  const std::string_view text(buffer.data(), size > 0 ? static_cast<std::size_t>(size) : 0);
  const std::size_t nameEnd = text.rfind(") ");  // a name may hold one as well; after it there are only numbers
  const char state = nameEnd == std::string_view::npos ? '?' : text[nameEnd + 2];
  return state == 'R' || state == 'D';
}

}  // namespace

bool isAnotherThreadBusy() {
  const Descriptor threads(::open("/proc/self/task", O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  const auto own = ::syscall(SYS_gettid);
  alignas(dirent64) std::array<char, 4096> buffer;
  for (ssize_t size = 0; (size = ::getdents64(threads.number(), buffer.data(), buffer.size())) > 0;) {
    for (ssize_t place = 0; place < size;) {
      const void* const address = buffer.data() + place;  // the system aligns each entry
      const auto* const entry = static_cast<const dirent64*>(address);
      place += entry->d_reclen;
      const std::string_view name = entry->d_name;
      long thread = 0;
      std::from_chars(name.data(), name.data() + name.size(), thread);
      if (thread > 0 && thread != own && isBusy(threads.number(), entry->d_name)) {
        return true;
      }
    }
  }
  return false;
}

}  // namespace tarn::rehearsal
