// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_COMMAND_VIEW_SERVER_H
#define TARNVOD_COMMAND_VIEW_SERVER_H

#include "viewer/event_hub.h"

#include <functional>
#include <map>
#include <memory>
#include <string>

namespace tarn::command {

/**
 * The viewer's page and what it asks for, over HTTP, on threads of its own.
 *
 * Answers only requests that name this server: a page of somewhere else whose name was made to lead here gets nothing.
 */
class ViewServer {
 public:
  using Parameters = std::map<std::string, std::string>;
  /** Gives JSON text. @throw UsageError when the parameters make no sense */
  using Answer = std::function<std::string(const Parameters&)>;

  /**
   * Takes the port; requests wait until `start`.
   *
   * @param port  0 for any that is free
   * @throw Failure  when the port cannot be had
   */
  ViewServer(const std::string& address, int port);
  /** Ends what is being answered, in a second or two even when a browser does not read. */
  ~ViewServer();
  ViewServer(const ViewServer&) = delete;
  ViewServer& operator=(const ViewServer&) = delete;

  /** What to answer at a path. Called by several threads at once. */
  void answer(const std::string& path, const Answer& answer);

  /** Gives the hub's events at "/events". Closes the hub when the server ends. */
  void stream(EventHub& hub);

  void start();

  /** What to open in a browser. */
  const std::string& url() const;

 private:
  class Implementation;

  const std::unique_ptr<Implementation> implementation_;
};

}  // namespace tarn::command

#endif
