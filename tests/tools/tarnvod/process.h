// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_TESTS_TOOLS_TARNVOD_PROCESS_H
#define TARNVOD_TESTS_TOOLS_TARNVOD_PROCESS_H

#include <sys/types.h>

#include <filesystem>
#include <string>
#include <vector>

/** How tests run the command: as a process of its own, as its users do. */
namespace test {

/** "NAME=value" for the process, in addition to the environment of the tests. */
using Environment = std::vector<std::string>;

/** What a process that has ended left. */
struct Outcome {
  int exitCode = -1;  ///< negative: the number of the signal that ended it
  std::string output;
  std::string errors;
};

/** A process that runs. Killed when it is destroyed before it has ended. */
class Process {
 public:
  enum class Output {
    Pipe,
    Terminal,          ///< standard input is a pipe
    TerminalWithKeys,  ///< standard input is the same terminal, in the foreground; `write` presses keys
  };

  /** @param output  what the process has for a standard output; standard error is always a pipe */
  Process(const std::string& program, const std::vector<std::string>& arguments, const Environment& environment = {},
          Output output = Output::Pipe);
  ~Process();
  Process(const Process&) = delete;
  Process& operator=(const Process&) = delete;

  /** Reads until standard output, or standard error, contains the text. Fails the test after a long time. */
  void waitForOutput(const std::string& text);
  void waitForErrors(const std::string& text);
  /** Reads until the output contains the text again, after what has been read so far. */
  void waitForMoreOutput(const std::string& text);

  /** Waits until the process has the file open. Fails the test after a long time. */
  void waitUntilOpen(const std::filesystem::path& file) const;

  /** Writes to standard input: the line with its end. */
  void write(const std::string& line);
  void signal(int number);
  /** Closes the reading end of standard output. */
  void stopReading();

  /** Reads all that is left and waits for the end. */
  Outcome wait();

  const std::string& output() const { return output_; }
  pid_t id() const { return id_; }

 private:
  void waitFor(const std::string& text, const std::string& where, std::size_t from);
  /** Reads what is available; false when both pipes have ended. */
  bool readSome();

  pid_t id_ = -1;
  int input_ = -1;
  int outputEnd_ = -1;
  int errorsEnd_ = -1;
  std::string output_;
  std::string errors_;
};

/** Runs the command to its end. */
Outcome run(const std::vector<std::string>& arguments, const Environment& environment = {});

/** Runs the command with standard output in a file. */
Outcome runWithOutputTo(const std::string& file, const std::vector<std::string>& arguments,
                        const Environment& environment = {});

/** Path of the command, and of the command together with a service that its standard input takes down and up. */
std::string command();
std::string commandWithServiceSwitch();

}  // namespace test

#endif
