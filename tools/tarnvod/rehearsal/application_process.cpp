// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "rehearsal/application_process.h"

#include "base/errors.h"

#include <dlfcn.h>
#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vod_host.h>

#include <array>
#include <map>
#include <system_error>
#include <utility>

namespace tarn::command {
namespace {

std::string describe(int error) {
  return std::system_category().message(error);
}

/** The folder of the host platform that this command uses. */
std::filesystem::path platformFolder() {
  Dl_info info{};
  if (::dladdr(reinterpret_cast<const void*>(&vod::host::takeServiceDown), &info) == 0) {
    throw Failure("the folder of the host platform is not known");
  }
  return std::filesystem::canonical(info.dli_fname).parent_path();
}

/** In front of what the variable holds, if anything. */
void prepend(std::map<std::string, std::string>& variables, const std::string& name, const std::string& value) {
  std::string& present = variables[name];
  present = present.empty() ? value : value + ':' + present;
}

struct Pipe {
  int read = -1;
  int write = -1;
};

Pipe makePipe() {
  std::array<int, 2> ends{};
  if (::pipe2(ends.data(), O_CLOEXEC) != 0) {
    throw Failure("cannot make a pipe: " + describe(errno));
  }
  return {ends[0], ends[1]};
}

std::vector<char*> pointersTo(std::vector<std::string>& texts) {
  std::vector<char*> pointers;
  for (std::string& text : texts) {
    pointers.push_back(text.data());
  }
  pointers.push_back(nullptr);
  return pointers;
}

/** How the process starts: which descriptors, which signals, in which group. */
class Start {
 public:
  Start(const Pipe& input, const Pipe& output) {
    posix_spawn_file_actions_init(&actions_);
    posix_spawn_file_actions_adddup2(&actions_, input.read, STDIN_FILENO);
    posix_spawn_file_actions_adddup2(&actions_, output.write, STDOUT_FILENO);
    posix_spawn_file_actions_adddup2(&actions_, output.write, STDERR_FILENO);
    posix_spawnattr_init(&attributes_);
    sigset_t all;
    sigfillset(&all);
    sigset_t none;
    sigemptyset(&none);
    posix_spawnattr_setsigdefault(&attributes_, &all);
    posix_spawnattr_setsigmask(&attributes_, &none);
    posix_spawnattr_setflags(&attributes_, POSIX_SPAWN_SETPGROUP | POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETSIGMASK);
  }
  ~Start() {
    posix_spawn_file_actions_destroy(&actions_);
    posix_spawnattr_destroy(&attributes_);
  }
  Start(const Start&) = delete;
  Start& operator=(const Start&) = delete;

  int spawn(pid_t& id, std::vector<std::string>& words, std::vector<std::string>& environment) const {
    return ::posix_spawnp(&id, words.front().c_str(), &actions_, &attributes_, pointersTo(words).data(),
                          pointersTo(environment).data());
  }

 private:
  posix_spawn_file_actions_t actions_{};
  posix_spawnattr_t attributes_{};
};

}  // namespace

RunFolder::RunFolder() {
  std::string name = std::filesystem::temp_directory_path() / "tarnvod-rehearsal-XXXXXX";
  if (::mkdtemp(name.data()) == nullptr) {
    throw Failure(name + ": " + describe(errno));
  }
  path_ = name;
  if (::mkfifo(journal().c_str(), 0600) != 0) {
    throw Failure(journal() + ": " + describe(errno));
  }
}

RunFolder::~RunFolder() {
  std::error_code ignored;  // There is nothing to be done about what stays.
  std::filesystem::remove_all(path_, ignored);
}

std::vector<std::string> currentEnvironment() {
  std::vector<std::string> all;
  for (char** entry = environ; *entry != nullptr; ++entry) {
    all.emplace_back(*entry);
  }
  return all;
}

std::vector<std::string> rehearsalEnvironment(const RunFolder& folder, double speed) {
  std::map<std::string, std::string> variables;
  for (const std::string& text : currentEnvironment()) {
    const std::size_t equals = text.find('=');
    variables[text.substr(0, equals)] = equals == std::string::npos ? "" : text.substr(equals + 1);
  }
  variables["TARNVOD_HOST_SCHEDULE"] = folder.schedule();
  variables["TARNVOD_HOST_JOURNAL"] = folder.journal();
  variables["TARNVOD_REHEARSAL_SPEED"] = std::to_string(speed);
  const std::filesystem::path platform = platformFolder();
  prepend(variables, "LD_PRELOAD", platform / "tarnvod" / "libtarnvod_rehearsal.so");
  prepend(variables, "LD_LIBRARY_PATH", platform);
  // Memory that a thread keeps for its next allocation would count as used.
  prepend(variables, "GLIBC_TUNABLES", "glibc.malloc.tcache_count=0");
  std::vector<std::string> environment;
  for (const auto& [name, value] : variables) {
    environment.push_back(name + '=' + value);
  }
  return environment;
}

ApplicationProcess::ApplicationProcess(std::vector<std::string> words, std::vector<std::string> environment) {
  const Pipe input = makePipe();
  const Pipe output = makePipe();
  const int error = Start(input, output).spawn(id_, words, environment);
  ::close(input.read);
  ::close(output.write);
  input_ = input.write;
  output_ = output.read;
  if (error != 0) {
    ::close(input_);
    ::close(output_);
    throw Failure(words.front() + ": " + describe(error));
  }
  static_cast<void>(::fcntl(output_, F_SETFL, O_NONBLOCK));
}

ApplicationProcess::~ApplicationProcess() {
  // Also when the application itself has ended: something that it has started may still run.
  ::kill(-id_, SIGKILL);
  if (!exitCode_) {
    ::waitpid(id_, nullptr, 0);
  }
  ::close(input_);
  ::close(output_);
}

void ApplicationProcess::signal(int number) const {
  ::kill(-id_, number);
}

std::optional<int> ApplicationProcess::exitCode() {
  int status = 0;
  if (!exitCode_ && ::waitpid(id_, &status, WNOHANG) == id_) {
    exitCode_ = WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
  }
  return exitCode_;
}

}  // namespace tarn::command
