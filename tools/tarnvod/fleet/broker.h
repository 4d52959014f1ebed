// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_COMMAND_BROKER_H
#define TARNVOD_COMMAND_BROKER_H

#include "base/errors.h"
#include "fleet/broker_options.h"

#include <chrono>
#include <exception>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

struct mosquitto;
struct mosquitto_message;

namespace tarn::command {

/** The broker cannot be reached, refuses, or does not answer. It may do so later. */
class BrokerProblem : public Failure {
  using Failure::Failure;
};

/** A message of a broker; valid while the function that receives it runs. */
struct BrokerMessage {
  std::string_view topic;
  std::string_view payload;
};

/** How a client appears to the broker. */
struct BrokerClient {
  struct Will {
    std::string topic;
    std::string payload;  ///< published, retained, when the client goes away without a word
  };

  std::string id;
  bool keepsSession = false;  ///< the broker keeps messages while the client is away
  std::optional<Will> will;
};

/**
 * One connection to an MQTT broker, from `connect` until it is lost or this object ends; a new one takes a new object.
 * All messages have quality of service 1. Not for use by two threads at once; the functions that are given run inside
 * of `wait`, and what they throw comes out of it.
 */
class Broker {
 public:
  using OnMessage = std::function<void(const BrokerMessage&)>;
  /** Receives the number of a message that the broker has taken over. */
  using OnTaken = std::function<void(int)>;

  /** @throw Failure  when a file of the options cannot be used */
  Broker(const BrokerOptions& options, const BrokerClient& client, OnMessage onMessage, OnTaken onTaken);
  ~Broker();
  Broker(const Broker&) = delete;
  Broker& operator=(const Broker&) = delete;

  /**
   * Connects to the first of the brokers that can be reached. Waits for the answer, or until `isCancelled` returns true.
   *
   * @throw BrokerProblem  when no broker can be reached, or each refuses or does not answer in time; it names the last
   */
  void connect(const std::function<bool()>& isCancelled);

  /** "broker HOST:PORT", for messages: the one to which a connection was tried last. */
  const std::string& name() const { return name_; }
  bool isConnected() const { return isConnected_; }
  /** Why the connection was lost; empty while it was not. */
  const std::string& problem() const { return problem_; }

  /** Subscribes, with quality of service 1. @throw BrokerProblem when the broker does not confirm it in time or refuses */
  void subscribe(const std::vector<std::string>& topics, const std::function<bool()>& isCancelled);

  /** Sends a message; returns its number. @throw BrokerProblem when it cannot be sent */
  int publish(const std::string& topic, std::string_view payload, bool isRetained = false);

  /**
   * Waits for the broker, for a byte to read from another descriptor, or for the time to pass, and handles what came.
   *
   * @param wakeUp  a descriptor; negative for none
   */
  void wait(std::chrono::milliseconds limit, int wakeUp = -1);

  /** Ends the connection in order: the will is not published. */
  void disconnect();

 private:
  struct Callbacks;

  void connectTo(const BrokerAddress& address, const std::function<bool()>& isCancelled);
  void setUpTls(const BrokerOptions& options);
  void check(int result, const std::string& what) const;
  void handle();
  /** Handles what comes until the condition holds. @throw BrokerProblem when it does not in time, or the connection is lost */
  void waitUntil(const std::function<bool()>& condition, const std::function<bool()>& isCancelled,
                 const std::string& what);
  void guarded(const std::function<void()>& call);

  const BrokerOptions options_;
  std::string name_;
  const OnMessage onMessage_;
  const OnTaken onTaken_;
  mosquitto* client_ = nullptr;
  bool isConnected_ = false;
  bool isSubscribed_ = false;
  std::string problem_;
  std::exception_ptr thrown_;
};

}  // namespace tarn::command

#endif
