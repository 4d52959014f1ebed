// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "fleet/broker.h"

#include "base/clock.h"
#include "base/files.h"

#include <mosquitto.h>
#include <poll.h>

#include <array>
#include <cerrno>
#include <iterator>
#include <system_error>
#include <utility>

namespace tarn::command {
namespace {

constexpr int qualityOfService = 1;
constexpr std::chrono::seconds answerTime{10};
constexpr std::chrono::milliseconds step{50};

/** The library's own state, which all connections share. */
void initializeLibrary() {
  struct Library {
    Library() { mosquitto_lib_init(); }
    ~Library() { mosquitto_lib_cleanup(); }
  };
  static const Library library;
}

/** The latest error of OpenSSL on this thread, in words; the MQTT library only logs it. */
std::string& latestTlsError() {
  thread_local std::string error;
  return error;
}

/** What OpenSSL says, without its codes: the part behind "SSL routines::". */
std::string withoutCodes(const std::string& error) {
  const std::size_t colons = error.rfind("::");
  return colons == std::string::npos ? error : error.substr(colons + 2);
}

bool isClosed(int result) {
  const bool isReset = result == MOSQ_ERR_ERRNO && (errno == ECONNRESET || errno == EPIPE || errno == EPROTO);
  return isReset || result == MOSQ_ERR_CONN_LOST || result == MOSQ_ERR_PROTOCOL;
}

/** The MQTT library does not say which file it cannot read. @throw Failure */
void checkFiles(const BrokerOptions& options) {
  for (const auto& file : {options.authorities, options.certificate, options.key}) {
    if (file) {
      static_cast<void>(readFile(*file, "a file in PEM format"));
    }
  }
}

/** Why a function of the MQTT library failed, and what to do about it where that is known. */
std::string reasonOf(int result, const BrokerOptions& options, bool wasConnected) {
  if (result == MOSQ_ERR_TLS && latestTlsError() == "certificate verify failed") {
    return "its certificate is not of an authority of --cafile, or is for another host";
  }
  if (result == MOSQ_ERR_TLS && !latestTlsError().empty()) {
    return "TLS: " + latestTlsError();
  }
  if (isClosed(result) && !wasConnected) {
    return options.authorities ? "it closes the connection; it may require another certificate (--cert)"
                               : "it closes the connection; it may require TLS (--cafile)";
  }
  return result == MOSQ_ERR_ERRNO ? std::generic_category().message(errno) : mosquitto_strerror(result);
}

}  // namespace

/** What the library calls; an exception must not pass through it. */
struct Broker::Callbacks {
  static Broker& of(void* object) { return *static_cast<Broker*>(object); }

  static void onConnect(mosquitto* /*client*/, void* object, int answer) {
    if (answer == 0) {
      of(object).isConnected_ = true;
    } else {
      of(object).problem_ = mosquitto_connack_string(answer);
    }
  }
  static void onDisconnect(mosquitto* /*client*/, void* object, int reason) {
    Broker& broker = of(object);
    const bool wasConnected = std::exchange(broker.isConnected_, false);
    if (broker.problem_.empty()) {
      broker.problem_ = reason == 0 ? "disconnected" : reasonOf(reason, broker.options_, wasConnected);
    }
  }
  static void onSubscribe(mosquitto* /*client*/, void* object, int /*id*/, int count, const int* granted) {
    for (int index = 0; index < count; ++index) {
      if (granted[index] > 2) {
        of(object).problem_ = "the subscription is refused";
      }
    }
    of(object).isSubscribed_ = true;
  }
  static void onPublish(mosquitto* /*client*/, void* object, int id) {
    of(object).guarded([&] { of(object).onTaken_(id); });
  }
  static void onLog(mosquitto* /*client*/, void* /*object*/, int level, const char* text) {
    if (level == MOSQ_LOG_ERR) {
      latestTlsError() = withoutCodes(text);
    }
  }
  static void onMessage(mosquitto* /*client*/, void* object, const mosquitto_message* message) {
    const std::string_view payload(static_cast<const char*>(message->payload),
                                   static_cast<std::size_t>(message->payloadlen));
    of(object).guarded([&] { of(object).onMessage_({message->topic, payload}); });
  }
};

Broker::Broker(const BrokerOptions& options, const BrokerClient& client, OnMessage onMessage, OnTaken onTaken)
    : options_(options),
      name_(options.addresses().front().name()),
      onMessage_(std::move(onMessage)),
      onTaken_(std::move(onTaken)) {
  initializeLibrary();
  checkFiles(options);
  const auto password = options.password();
  client_ = mosquitto_new(client.id.c_str(), !client.keepsSession, this);
  if (client_ == nullptr) {
    throw Failure(name_ + ": " + std::generic_category().message(errno));
  }
  // The sender of messages bounds them.
  mosquitto_int_option(client_, MOSQ_OPT_SEND_MAXIMUM, 65535);
  if (options.user) {
    check(mosquitto_username_pw_set(client_, options.user->c_str(), password ? password->c_str() : nullptr), "--user");
  }
  setUpTls(options);
  if (const auto& will = client.will) {
    check(mosquitto_will_set(client_, will->topic.c_str(), static_cast<int>(will->payload.size()), will->payload.data(),
                             qualityOfService, true),
          "the last will");
  }
  mosquitto_log_callback_set(client_, Callbacks::onLog);
  mosquitto_connect_callback_set(client_, Callbacks::onConnect);
  mosquitto_disconnect_callback_set(client_, Callbacks::onDisconnect);
  mosquitto_subscribe_callback_set(client_, Callbacks::onSubscribe);
  mosquitto_publish_callback_set(client_, Callbacks::onPublish);
  mosquitto_message_callback_set(client_, Callbacks::onMessage);
}

Broker::~Broker() {
  mosquitto_destroy(client_);
}

void Broker::setUpTls(const BrokerOptions& options) {
  if (!options.authorities) {
    return;
  }
  const auto text = [](const std::optional<std::string>& value) { return value ? value->c_str() : nullptr; };
  check(mosquitto_tls_set(client_, options.authorities->c_str(), nullptr, text(options.certificate), text(options.key),
                          nullptr),
        "--cafile, --cert or --key");
}

void Broker::check(int result, const std::string& what) const {
  if (result != MOSQ_ERR_SUCCESS) {
    throw BrokerProblem(name_ + ": " + what + ": " + reasonOf(result, options_, isConnected_));
  }
}

void Broker::guarded(const std::function<void()>& call) {
  try {
    call();
  } catch (...) {
    thrown_ = std::current_exception();
  }
}

void Broker::connect(const std::function<bool()>& isCancelled) {
  const std::vector<BrokerAddress> addresses = options_.addresses();
  for (auto address = addresses.begin(); !isConnected_ && !isCancelled(); ++address) {
    try {
      connectTo(*address, isCancelled);
    } catch (const BrokerProblem&) {
      if (std::next(address) == addresses.end()) {
        throw;
      }
    }
  }
}

void Broker::connectTo(const BrokerAddress& address, const std::function<bool()>& isCancelled) {
  name_ = address.name();
  problem_.clear();
  check(mosquitto_connect_async(client_, address.host.c_str(), address.port, options_.keepAlive), "cannot connect");
  waitUntil([this] { return isConnected_; }, isCancelled, "cannot connect");
}

void Broker::subscribe(const std::vector<std::string>& topics, const std::function<bool()>& isCancelled) {
  for (const std::string& topic : topics) {
    isSubscribed_ = false;
    check(mosquitto_subscribe(client_, nullptr, topic.c_str(), qualityOfService), "cannot subscribe");
    waitUntil([this] { return isSubscribed_; }, isCancelled, "cannot subscribe to " + topic);
  }
}

void Broker::waitUntil(const std::function<bool()>& condition, const std::function<bool()>& isCancelled,
                       const std::string& what) {
  const auto deadline = Clock::now() + answerTime;
  while (!condition() && !isCancelled()) {
    wait(step);
    if (problem_.empty() && Clock::now() > deadline) {
      problem_ = "no answer";
    }
    if (!problem_.empty()) {
      throw BrokerProblem(name_ + ": " + what + ": " + problem_);
    }
  }
}

int Broker::publish(const std::string& topic, std::string_view payload, bool isRetained) {
  int id = 0;
  check(mosquitto_publish(client_, &id, topic.c_str(), static_cast<int>(payload.size()), payload.data(),
                          qualityOfService, isRetained),
        "cannot publish");
  return id;
}

void Broker::wait(std::chrono::milliseconds limit, int wakeUp) {
  const int socket = mosquitto_socket(client_);
  if (socket < 0) {
    handle();
    return;
  }
  const bool wantsWrite = mosquitto_want_write(client_);
  std::array<pollfd, 2> ends{
      {{socket, static_cast<short>(wantsWrite ? POLLIN | POLLOUT : POLLIN), 0}, {wakeUp, POLLIN, 0}}};
  poll(ends.data(), ends.size(), static_cast<int>(limit.count()));
  handle();
}

void Broker::handle() {
  const int result = mosquitto_loop(client_, 0, 1);
  if (thrown_) {
    std::rethrow_exception(std::exchange(thrown_, nullptr));
  }
  if (result != MOSQ_ERR_SUCCESS) {
    const bool wasConnected = std::exchange(isConnected_, false);
    if (problem_.empty()) {
      problem_ = reasonOf(result, options_, wasConnected);
    }
  }
}

void Broker::disconnect() {
  mosquitto_disconnect(client_);
  for (const auto deadline = Clock::now() + step; mosquitto_want_write(client_) && Clock::now() < deadline;) {
    mosquitto_loop(client_, 1, 1);
  }
  isConnected_ = false;
}

}  // namespace tarn::command
