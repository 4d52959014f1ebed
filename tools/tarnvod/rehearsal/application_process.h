// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_COMMAND_APPLICATION_PROCESS_H
#define TARNVOD_COMMAND_APPLICATION_PROCESS_H

#include <sys/types.h>

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace tarn::command {

/** A folder for one run, removed with all that it holds when this is destroyed. */
class RunFolder {
 public:
  RunFolder();
  ~RunFolder();
  RunFolder(const RunFolder&) = delete;
  RunFolder& operator=(const RunFolder&) = delete;

  std::string schedule() const { return path_ / "schedule"; }
  std::string journal() const { return path_ / "journal"; }

 private:
  std::filesystem::path path_;
};

/** The environment of this process. */
std::vector<std::string> currentEnvironment();

/** The environment of an application that is rehearsed: the present one, and what the host platform reads. */
std::vector<std::string> rehearsalEnvironment(const RunFolder& folder, double speed);

/** A process in a group of its own. It, and all that it has started, are killed when this is destroyed. */
class ApplicationProcess {
 public:
  /** @throw Failure  when the program cannot be started */
  ApplicationProcess(std::vector<std::string> words, std::vector<std::string> environment);
  ~ApplicationProcess();
  ApplicationProcess(const ApplicationProcess&) = delete;
  ApplicationProcess& operator=(const ApplicationProcess&) = delete;

  /** Where both of its outputs can be read. */
  int output() const { return output_; }
  /** Sends a signal to all of the group. */
  void signal(int number) const;
  /** Its exit code, negative for the number of a signal, once it has ended. */
  std::optional<int> exitCode();

 private:
  pid_t id_ = -1;
  int input_ = -1;
  int output_ = -1;
  std::optional<int> exitCode_;
};

}  // namespace tarn::command

#endif
