// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "process.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <pty.h>
#include <signal.h>
#include <sys/ioctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <stdexcept>
#include <thread>

namespace test {
namespace {

constexpr std::chrono::seconds patience{100};  // less than what CTest allows a test

struct Ends {
  int read = -1;
  int write = -1;
};

Ends makePipe() {
  std::array<int, 2> ends{};
  if (pipe2(ends.data(), O_CLOEXEC) != 0) {
    throw std::runtime_error("no pipe");
  }
  return {ends[0], ends[1]};
}

Ends makeTerminal() {
  winsize size{};
  size.ws_col = 100;
  size.ws_row = 30;
  Ends ends;
  if (openpty(&ends.read, &ends.write, nullptr, nullptr, &size) != 0) {
    throw std::runtime_error("no terminal");
  }
  fcntl(ends.read, F_SETFD, FD_CLOEXEC);
  fcntl(ends.write, F_SETFD, FD_CLOEXEC);
  return ends;
}

std::vector<char*> pointersTo(std::vector<std::string>& texts) {
  std::vector<char*> pointers;
  for (std::string& text : texts) {
    pointers.push_back(text.data());
  }
  pointers.push_back(nullptr);
  return pointers;
}

/** Whether it holds the variable, whose name ends with the equals sign. */
bool holds(const Environment& environment, const std::string& name) {
  return std::any_of(environment.begin(), environment.end(),
                     [&](const std::string& entry) { return entry.compare(0, name.size(), name) == 0; });
}

std::vector<std::string> withInherited(const Environment& environment) {
  std::vector<std::string> all = environment;
  if (!holds(environment, "TARNVOD_HOST_LOG=")) {
    all.emplace_back("TARNVOD_HOST_LOG=syslog");  // Whether or not the machine has a system log.
  }
  for (char** inherited = environ; *inherited != nullptr; ++inherited) {
    const std::string entry = *inherited;
    if (!holds(all, entry.substr(0, entry.find('=') + 1))) {
      all.push_back(entry);
    }
  }
  return all;
}

/** A terminal has a kind, whatever the tests themselves run on. */
Environment onTerminal(Environment environment) {
  if (!holds(environment, "TERM=")) {
    environment.emplace_back("TERM=xterm");
  }
  return environment;
}

[[noreturn]] void become(const std::string& program, std::vector<char*>& arguments, std::vector<char*>& environment,
                         int input, int output, int errors) {
  if (input == output) {
    setsid();
    ioctl(input, TIOCSCTTY, 0);
  }
  dup2(input, STDIN_FILENO);
  dup2(output, STDOUT_FILENO);
  dup2(errors, STDERR_FILENO);
  ::signal(SIGINT, SIG_DFL);  // ignored where a shell without job control runs the tests in the background
  execve(program.c_str(), arguments.data(), environment.data());
  _exit(127);
}

/** Adds what can be read now; closes the end and forgets it when there is no more. */
void drain(int& end, std::string& text) {
  std::array<char, 65536> buffer;
  const ssize_t count = ::read(end, buffer.data(), buffer.size());
  if (count > 0) {
    text.append(buffer.data(), static_cast<std::size_t>(count));
  } else if (count == 0 || errno != EINTR) {  // a terminal reports its end as an error
    close(end);
    end = -1;
  }
}

}  // namespace

Process::Process(const std::string& program, const std::vector<std::string>& arguments, const Environment& environment,
                 Output output) {
  std::vector<std::string> words{program};
  words.insert(words.end(), arguments.begin(), arguments.end());
  std::vector<std::string> variables = withInherited(output == Output::Pipe ? environment : onTerminal(environment));
  auto wordPointers = pointersTo(words);
  auto variablePointers = pointersTo(variables);
  const Ends inputs = makePipe();
  const Ends outputs = output == Output::Pipe ? makePipe() : makeTerminal();
  const bool hasKeys = output == Output::TerminalWithKeys;
  const Ends errors = makePipe();
  id_ = fork();
  if (id_ == 0) {
    become(program, wordPointers, variablePointers, hasKeys ? outputs.write : inputs.read, outputs.write, errors.write);
  }
  close(inputs.read);
  if (hasKeys) {
    close(inputs.write);
  }
  close(outputs.write);
  close(errors.write);
  input_ = hasKeys ? fcntl(outputs.read, F_DUPFD_CLOEXEC, 0) : inputs.write;
  outputEnd_ = outputs.read;
  errorsEnd_ = errors.read;
}

Process::~Process() {
  for (const int end : {input_, outputEnd_, errorsEnd_}) {
    if (end >= 0) {
      close(end);
    }
  }
  if (id_ > 0) {
    kill(id_, SIGKILL);
    waitpid(id_, nullptr, 0);
  }
}

bool Process::readSome() {
  std::array<pollfd, 2> ends{{{outputEnd_, POLLIN, 0}, {errorsEnd_, POLLIN, 0}}};
  if (outputEnd_ < 0 && errorsEnd_ < 0) {
    return false;
  }
  poll(ends.data(), ends.size(), 1000);
  if (ends[0].revents != 0) {
    drain(outputEnd_, output_);
  }
  if (ends[1].revents != 0) {
    drain(errorsEnd_, errors_);
  }
  return true;
}

void Process::waitFor(const std::string& text, const std::string& where, std::size_t from) {
  const auto deadline = std::chrono::steady_clock::now() + patience;
  while (where.find(text, from) == std::string::npos) {
    if (!readSome() || std::chrono::steady_clock::now() > deadline) {
      throw std::runtime_error("timed out waiting for \"" + text + "\"\noutput: " + output_ + "\nerrors: " + errors_);
    }
  }
}

void Process::waitForOutput(const std::string& text) {
  waitFor(text, output_, 0);
}

void Process::waitForErrors(const std::string& text) {
  waitFor(text, errors_, 0);
}

void Process::waitForMoreOutput(const std::string& text) {
  waitFor(text, output_, output_.size());
}

void Process::waitUntilOpen(const std::filesystem::path& file) const {
  const auto deadline = std::chrono::steady_clock::now() + patience;
  const auto descriptors = std::filesystem::path("/proc") / std::to_string(id_) / "fd";
  while (std::chrono::steady_clock::now() < deadline) {
    for (const auto& descriptor : std::filesystem::directory_iterator(descriptors)) {
      std::error_code closedMeanwhile;
      if (std::filesystem::read_symlink(descriptor, closedMeanwhile) == file) {
        return;
      }
    }
    std::this_thread::yield();
  }
  throw std::runtime_error("timed out waiting for " + file.string() + " to be opened");
}

void Process::write(const std::string& line) {
  const std::string text = line + '\n';
  ASSERT_EQ(::write(input_, text.data(), text.size()), static_cast<ssize_t>(text.size()));
}

void Process::signal(int number) {
  kill(id_, number);
}

void Process::stopReading() {
  close(outputEnd_);
  outputEnd_ = -1;
}

Outcome Process::wait() {
  const auto deadline = std::chrono::steady_clock::now() + patience;
  while (readSome()) {
    if (std::chrono::steady_clock::now() > deadline) {
      throw std::runtime_error("does not end\noutput: " + output_ + "\nerrors: " + errors_);
    }
  }
  int status = 0;
  waitpid(id_, &status, 0);
  id_ = -1;
  return {WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status), output_, errors_};
}

Outcome run(const std::vector<std::string>& arguments, const Environment& environment) {
  return Process(command(), arguments, environment).wait();
}

Outcome runWithOutputTo(const std::string& file, const std::vector<std::string>& arguments,
                        const Environment& environment) {
  std::vector<std::string> words{"-c", "exec \"$0\" \"$@\" > " + file, command()};
  words.insert(words.end(), arguments.begin(), arguments.end());
  return Process("/bin/sh", words, environment).wait();
}

std::string command() {
  return TARNVOD_COMMAND;
}

std::string commandWithServiceSwitch() {
  return TARNVOD_SERVICE_SWITCH;
}

}  // namespace test
