// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "viewer/view_server.h"

#include "base/errors.h"
#include "viewer/http_host.h"
#include "viewer/page_files.h"

#include <httplib.h>
#include <sys/socket.h>

#include <cerrno>
#include <chrono>
#include <cstring>
#include <exception>
#include <thread>
#include <utility>

namespace tarn::command {
namespace {

/** Beside those that are busy with a browser's events. */
constexpr std::size_t threadsForAnswers = 8;
/** What the system may keep for a browser that does not read. */
constexpr int sendBufferSize = 128 * 1024;
/** How long a browser may be slow to write a request, or not read at all. */
constexpr std::chrono::seconds patience{2};
/** No request has a body. */
constexpr std::size_t longestBody = 1;
constexpr const char* plainText = "text/plain; charset=utf-8";
constexpr const char* json = "application/json";

/** So that a port can be had again at once; but not by two viewers at the same time, as the library's options would. */
void setSocketOptions(socket_t socket) {
  const int yes = 1;
  setsockopt(socket, SOL_SOCKET, SO_REUSEADDR, &yes, sizeof yes);
  setsockopt(socket, SOL_SOCKET, SO_SNDBUF, &sendBufferSize, sizeof sendBufferSize);
}

/** Only the page's own files, no markup from text. */
constexpr const char* contentPolicy =
    "default-src 'none'; script-src 'self'; style-src 'self'; connect-src 'self'; img-src data:; base-uri 'none'; "
    "form-action 'none'; frame-ancestors 'none'; require-trusted-types-for 'script'; trusted-types 'none'";

/** Answers as it is: the library would compress it, which takes longer than the way to a browser on the same desk. */
void answerUncompressed(httplib::Response& response, std::string text, const char* type) {
  const std::size_t size = text.size();
  response.set_content_provider(size, type,
                                [text = std::move(text)](std::size_t at, std::size_t length, httplib::DataSink& sink) {
                                  return sink.write(text.data() + at, length);
                                });
}

void answerFile(const PageFile& file, httplib::Response& response) {
  response.set_header("Content-Security-Policy", contentPolicy);
  answerUncompressed(response, std::string(file.text), file.type.data());
}

void refuse(httplib::Response& response, int status, const std::string& reason) {
  response.status = status;
  response.set_content(reason + '\n', plainText);
}

void answerEvents(EventHub& hub, httplib::Response& response) {
  const auto stream = hub.join();
  if (!stream) {
    refuse(response, 503,
           "No more than " + std::to_string(EventHub::mostBrowsers) + " browsers can look at once; close one.");
    return;
  }
  response.set_chunked_content_provider("text/event-stream", [stream](std::size_t, httplib::DataSink& sink) {
    const auto text = stream->take();
    if (!text) {
      sink.done();
      return true;
    }
    return sink.write(text->data(), text->size());
  });
}

/** What another site's page asks for by itself is none of its business; following a link to the page is. */
bool isFromAnotherSite(const httplib::Request& request) {
  const std::string site = request.get_header_value("Sec-Fetch-Site");
  return request.path != "/" && !site.empty() && site != "same-origin" && site != "none";
}

void explain(std::exception_ptr problem, httplib::Response& response) {
  try {
    std::rethrow_exception(std::move(problem));
  } catch (const UsageError& error) {
    refuse(response, 400, error.what());
  } catch (const std::exception& error) {
    refuse(response, 500, error.what());
  }
}

}  // namespace

class ViewServer::Implementation {
 public:
  Implementation(const std::string& address, int port) : address_(address) {
    configure();
    bind(port);
    refuseStrangers();
    for (const PageFile& file : pageFiles()) {
      server_.Get(std::string(file.path),
                  [&file](const httplib::Request&, httplib::Response& response) { answerFile(file, response); });
    }
  }

  ~Implementation() {
    if (hub_ != nullptr) {
      hub_->close();
    }
    if (thread_.joinable()) {
      server_.stop();
      thread_.join();
    }
  }

  void answer(const std::string& path, const Answer& answer) {
    server_.Get(path, [answer](const httplib::Request& request, httplib::Response& response) {
      answerUncompressed(response, answer(Parameters(request.params.begin(), request.params.end())), json);
    });
  }

  void stream(EventHub& hub) {
    hub_ = &hub;
    server_.Get("/events",
                [&hub](const httplib::Request&, httplib::Response& response) { answerEvents(hub, response); });
  }

  void start() {
    thread_ = std::thread([this] { server_.listen_after_bind(); });
    // A server that does not run yet would not be stopped.
    while (!server_.is_running()) {
      std::this_thread::yield();
    }
  }

  const std::string& url() const { return url_; }

 private:
  void configure() {
    server_.new_task_queue = [] { return new httplib::ThreadPool(EventHub::mostBrowsers + threadsForAnswers); };
    server_.set_socket_options(setSocketOptions);
    server_.set_tcp_nodelay(true);
    server_.set_keep_alive_max_count(1);
    server_.set_keep_alive_timeout(patience.count());
    server_.set_read_timeout(patience);
    server_.set_write_timeout(patience);
    server_.set_payload_max_length(longestBody);
    server_.set_default_headers({{"Cache-Control", "no-store"},
                                 {"Cross-Origin-Resource-Policy", "same-origin"},
                                 {"Referrer-Policy", "no-referrer"},
                                 {"X-Content-Type-Options", "nosniff"}});
    server_.set_exception_handler([](const httplib::Request&, httplib::Response& response, std::exception_ptr problem) {
      explain(std::move(problem), response);
    });
  }

  void bind(int port) {
    errno = 0;
    port_ = port == 0 ? server_.bind_to_any_port(address_) : server_.bind_to_port(address_, port) ? port : -1;
    if (port_ < 0) {
      throw Failure("cannot listen at " + hostAndPort(address_, port) + ": " +
                    (errno != 0 ? std::strerror(errno) : "this is no address of this machine"));
    }
    url_ = "http://" + hostAndPort(address_, port_) + '/';
  }

  void refuseStrangers() {
    server_.set_pre_routing_handler([this](const httplib::Request& request, httplib::Response& response) {
      if (isHostOf(request.get_header_value("Host"), address_, port_) && !isFromAnotherSite(request)) {
        return httplib::Server::HandlerResponse::Unhandled;
      }
      refuse(response, 403, "This viewer is at " + url_ + " and answers no requests for other places.");
      return httplib::Server::HandlerResponse::Handled;
    });
  }

  const std::string address_;
  int port_ = 0;
  std::string url_;
  EventHub* hub_ = nullptr;
  httplib::Server server_;
  std::thread thread_;
};

ViewServer::ViewServer(const std::string& address, int port)
    : implementation_(std::make_unique<Implementation>(address, port)) {}

ViewServer::~ViewServer() = default;

void ViewServer::answer(const std::string& path, const Answer& answer) {
  implementation_->answer(path, answer);
}

void ViewServer::stream(EventHub& hub) {
  implementation_->stream(hub);
}

void ViewServer::start() {
  implementation_->start();
}

const std::string& ViewServer::url() const {
  return implementation_->url();
}

}  // namespace tarn::command
