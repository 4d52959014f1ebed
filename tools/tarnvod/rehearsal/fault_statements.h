// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_COMMAND_FAULT_STATEMENTS_H
#define TARNVOD_COMMAND_FAULT_STATEMENTS_H

#include <schedule/schedule.h>

#include <map>
#include <set>
#include <string>

namespace tarn::command {

/** Cameras, counted from 1, with the names of their classes. */
using CameraClasses = std::map<int, std::set<std::string>>;

/** The statement with the camera's number for each "@". */
std::string withCamera(const std::string& statement, int camera);

/** The statements of a generated test that bring faults about. */
class FaultStatements {
 public:
  /** @param cameras  that the application sets up; a fault without a camera concerns all of them */
  explicit FaultStatements(const CameraClasses& cameras) : cameras_(cameras) {}

  /** Each begins a line, with two spaces. A comment says what happens. */
  std::string begin(const vod::schedule::Fault& fault, std::size_t number);
  std::string end(const vod::schedule::Fault& fault, std::size_t number);
  /** Whether no fault is going on that keeps calls from succeeding. */
  bool serviceAnswers() const { return withoutAnswer_ == 0; }

 private:
  std::string begun(const vod::schedule::Fault& fault, const std::string& number);
  /** The statement for each camera that the fault concerns. */
  std::string forCameras(const vod::schedule::Fault& fault, const std::string& statement) const;
  std::string dropped(const vod::schedule::Fault& fault) const;
  std::string drained() const;

  const CameraClasses& cameras_;
  int withoutAnswer_ = 0;
  int hanging_ = 0;
};

}  // namespace tarn::command

#endif
