// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "http/http_server.h"

#include "base/errors.h"
#include "http/connection_table.h"
#include "http/listening_socket.h"

#include <arpa/inet.h>
#include <microhttpd.h>
#include <netinet/in.h>
#include <sys/socket.h>

#include <array>
#include <exception>
#include <string_view>
#include <utility>

namespace tarn::command {
namespace {

/** Holds a request's line and headers, and what is next to be sent. */
constexpr std::size_t bytesPerConnection = 16U << 10U;
constexpr ConnectionTable::Limits limits{384, 16U << 20U};
/** Also connections that are closing; descriptors are usually limited to 1024. */
constexpr unsigned int mostConnections = 512;
/** How long a client may be silent while it sends a request or receives an answer. */
constexpr unsigned int patienceSeconds = 10;

constexpr std::array<std::pair<const char*, const char*>, 6> headers{
    {{"Cache-Control", "no-store"},
     {"Connection", "close"},
     {"Content-Security-Policy",
      "default-src 'none'; script-src 'self'; style-src 'self'; connect-src 'self'; img-src 'self' data:; base-uri "
      "'none'; "
      "form-action 'none'; frame-ancestors 'none'; require-trusted-types-for 'script'; trusted-types 'none'"},
     {"Cross-Origin-Resource-Policy", "same-origin"},
     {"Referrer-Policy", "no-referrer"},
     {"X-Content-Type-Options", "nosniff"}}};

using Response = std::unique_ptr<MHD_Response, decltype(&MHD_destroy_response)>;

std::string text(const char* bytes, std::size_t size) {
  return bytes == nullptr ? "" : std::string(bytes, size);
}

HttpRequest requestOf(MHD_Connection* connection, const char* path, const char* method, const char* version) {
  HttpRequest request{method, path, version, {}, {}};
  MHD_get_connection_values_n(
      connection, MHD_HEADER_KIND,
      [](void* target, MHD_ValueKind, const char* name, std::size_t nameSize, const char* value, std::size_t size) {
        static_cast<HttpRequest*>(target)->headers.emplace_back(text(name, nameSize), text(value, size));
        return MHD_YES;
      },
      &request);
  MHD_get_connection_values_n(
      connection, MHD_GET_ARGUMENT_KIND,
      [](void* target, MHD_ValueKind, const char* name, std::size_t nameSize, const char* value, std::size_t size) {
        static_cast<HttpRequest*>(target)->parameters[text(name, nameSize)] = text(value, size);
        return MHD_YES;
      },
      &request);
  return request;
}

/** The client's address without its port. */
std::string addressOf(MHD_Connection* connection) {
  const auto* info = MHD_get_connection_info(connection, MHD_CONNECTION_INFO_CLIENT_ADDRESS);
  const void* const address = info->client_addr;  // aligned for each kind of address
  std::array<char, INET6_ADDRSTRLEN> buffer{};
  if (info->client_addr->sa_family == AF_INET6) {
    inet_ntop(AF_INET6, &static_cast<const sockaddr_in6*>(address)->sin6_addr, buffer.data(), buffer.size());
  } else {
    inet_ntop(AF_INET, &static_cast<const sockaddr_in*>(address)->sin_addr, buffer.data(), buffer.size());
  }
  return buffer.data();
}

/** Deletes what a response was made with. */
template <typename Kept>
void release(void* kept) {
  delete static_cast<Kept*>(kept);
}

/** The response shares the body. */
Response responseWith(const SharedText& body) {
  auto kept = std::make_unique<SharedText>(body);
  Response response(MHD_create_response_from_buffer_with_free_callback_cls(
                        body->size(), const_cast<char*>(body->data()), &release<SharedText>, kept.get()),
                    &MHD_destroy_response);
  if (response) {
    static_cast<void>(kept.release());
  }
  return response;
}

using SharedStream = std::shared_ptr<EventStream>;

ssize_t readStream(void* stream, std::uint64_t, char* buffer, std::size_t size) {
  try {
    const auto count = (*static_cast<SharedStream*>(stream))->read(buffer, size);
    return count ? static_cast<ssize_t>(*count) : MHD_CONTENT_READER_END_OF_STREAM;
  } catch (const std::exception&) {
    return MHD_CONTENT_READER_END_WITH_ERROR;  // out of memory
  }
}

Response responseWith(const SharedStream& stream) {
  auto kept = std::make_unique<SharedStream>(stream);
  Response response(MHD_create_response_from_callback(MHD_SIZE_UNKNOWN, bytesPerConnection, &readStream, kept.get(),
                                                      &release<SharedStream>),
                    &MHD_destroy_response);
  if (response) {
    static_cast<void>(kept.release());
  }
  return response;
}

MHD_Result send(MHD_Connection* connection, const HttpAnswer& answer, const Response& response) {
  for (const auto& [name, value] : headers) {
    MHD_add_response_header(response.get(), name, value);
  }
  MHD_add_response_header(response.get(), "Content-Type", answer.type.c_str());
  if (answer.status == 405) {
    MHD_add_response_header(response.get(), "Allow", "GET");
  }
  return MHD_queue_response(connection, static_cast<unsigned int>(answer.status), response.get());
}

}  // namespace

class HttpServer::Implementation {
 public:
  Implementation(const std::string& address, int port) : socket_(address, port), site_(address, socket_.port()) {}

  ~Implementation() {
    if (hub_ != nullptr) {
      hub_->close();  // wakes the streams: the daemon cannot end with sleeping connections
    }
    if (daemon_ != nullptr) {
      MHD_stop_daemon(daemon_);
    }
  }

  HttpSite& site() { return site_; }

  void stream(EventHub& hub) {
    hub_ = &hub;
    site_.addEvents("/events");
  }

  void start() {
    const int descriptor = socket_.release();
    daemon_ = MHD_start_daemon(
        MHD_USE_EPOLL_INTERNAL_THREAD | MHD_ALLOW_SUSPEND_RESUME, 0, nullptr, nullptr, &Implementation::onRequest, this,
        MHD_OPTION_LISTEN_SOCKET, descriptor, MHD_OPTION_CONNECTION_MEMORY_LIMIT, bytesPerConnection,
        MHD_OPTION_CONNECTION_LIMIT, mostConnections, MHD_OPTION_CONNECTION_TIMEOUT, patienceSeconds,
        MHD_OPTION_STRICT_FOR_CLIENT, 1, MHD_OPTION_UNESCAPE_CALLBACK, &Implementation::leaveEscaped, nullptr,
        MHD_OPTION_NOTIFY_CONNECTION, &Implementation::onConnection, this, MHD_OPTION_END);
    if (daemon_ == nullptr) {
      throw Failure("cannot start the server of " + site_.url());
    }
  }

 private:
  /** No path or parameter of the page needs escapes, so none is decoded. */
  static std::size_t leaveEscaped(void*, MHD_Connection*, char* text) { return std::string_view(text).size(); }

  static void onConnection(void* self, MHD_Connection* connection, void** id, MHD_ConnectionNotificationCode code) {
    auto& table = static_cast<Implementation*>(self)->connections_;
    if (code == MHD_CONNECTION_NOTIFY_CLOSED) {
      table.remove(reinterpret_cast<ConnectionTable::Id>(*id));
      return;
    }
    const auto* info = MHD_get_connection_info(connection, MHD_CONNECTION_INFO_CONNECTION_FD);
    *id = reinterpret_cast<void*>(table.add(info->connect_fd, addressOf(connection)));
  }

  /** Answers as soon as the headers are there, before any body. */
  static MHD_Result onRequest(void* self, MHD_Connection* connection, const char* path, const char* method,
                              const char* version, const char*, std::size_t*, void**) {
    try {
      return static_cast<Implementation*>(self)->answer(connection, requestOf(connection, path, method, version));
    } catch (const std::exception&) {
      return MHD_NO;  // out of memory: the connection is closed
    }
  }

  MHD_Result answer(MHD_Connection* connection, const HttpRequest& request) {
    const HttpAnswer answer = site_.answerTo(request);
    if (answer.isEventStream) {
      return answerEvents(connection, answer);
    }
    if (answer.isMadeForRequest && !connections_.addAnswer(idOf(connection), answer.body->size())) {
      const HttpAnswer busy = refusal(503, "This server is sending too much at present; ask again.");
      return send(connection, busy, responseWith(busy.body));
    }
    return send(connection, answer, responseWith(answer.body));
  }

  MHD_Result answerEvents(MHD_Connection* connection, const HttpAnswer& answer) {
    const auto stream = hub_->join(
        {[connection] { MHD_suspend_connection(connection); }, [connection] { MHD_resume_connection(connection); }});
    if (!stream) {
      const HttpAnswer full = refusal(
          503, "No more than " + std::to_string(EventHub::mostBrowsers) + " browsers can view at once; close one.");
      return send(connection, full, responseWith(full.body));
    }
    connections_.markStream(idOf(connection));
    return send(connection, answer, responseWith(stream));
  }

  static ConnectionTable::Id idOf(MHD_Connection* connection) {
    const auto* info = MHD_get_connection_info(connection, MHD_CONNECTION_INFO_SOCKET_CONTEXT);
    return reinterpret_cast<ConnectionTable::Id>(info->socket_context);
  }

  ListeningSocket socket_;
  HttpSite site_;
  EventHub* hub_ = nullptr;
  /** Used on the daemon's thread only. */
  ConnectionTable connections_{limits, [](int socket) { shutdown(socket, SHUT_RDWR); }};
  MHD_Daemon* daemon_ = nullptr;
};

HttpServer::HttpServer(const std::string& address, int port)
    : implementation_(std::make_unique<Implementation>(address, port)) {}

HttpServer::~HttpServer() = default;

HttpSite& HttpServer::site() {
  return implementation_->site();
}

void HttpServer::stream(EventHub& hub) {
  implementation_->stream(hub);
}

void HttpServer::start() {
  implementation_->start();
}

}  // namespace tarn::command
