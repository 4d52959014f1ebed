// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "situations.h"
#include "viewer.h"

#include <gtest/gtest.h>
#include <signal.h>

#include <atomic>
#include <chrono>
#include <cstdint>
#include <thread>
#include <vector>

using test::Connection;

namespace {

/** Longer than a busy machine takes, shorter than the server waits for a client that is silent. */
constexpr std::chrono::seconds soon{8};

class AViewerUnderAttack : public test::TwoCameras {
 protected:
  std::vector<Connection> connections(int count) const {
    std::vector<Connection> result;
    for (int each = 0; each < count; ++each) {
      result.emplace_back(viewer.port());
    }
    return result;
  }

  void expectThatAGoodBrowserIsAnswered() const {
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(viewer.get("/").status, 200);
    EXPECT_LT(std::chrono::steady_clock::now() - start, soon);
  }

  test::Viewer viewer{{"--camera", "1"}, playing()};
};

TEST_F(AViewerUnderAttack, SendsNoByteBeyondAnAnswerForARange) {
  for (const char* path : {"/", "/setup.json", "/page.css", "/events", "/nowhere"}) {
    for (const char* range : {"bytes=120-2120", "bytes=0-", "bytes=-1000", "bytes=0-0,1-99999", "nonsense"}) {
      const test::Answer answer = viewer.get(path, {{"Range", range}});
      EXPECT_EQ(answer.status, 416) << path << ' ' << range;
      EXPECT_EQ(answer.body, "This server sends no ranges.\n");
    }
  }
}

/** A request that never ends: how it begins, and what follows again and again. */
struct EndlessRequest {
  const char* name;
  std::string begin;
  std::string more;
};

void PrintTo(const EndlessRequest& request, std::ostream* out) {
  *out << request.name;
}

class AnEndlessRequest : public AViewerUnderAttack, public testing::WithParamInterface<EndlessRequest> {};

TEST_P(AnEndlessRequest, IsCutOffBeforeItTakesMemory) {
  constexpr int attackers = 32;
  constexpr std::size_t bytesTried = 8U << 20U;
  std::string more;
  while (more.size() < (64U << 10U)) {
    more += GetParam().more;
  }
  std::size_t accepted = 0;
  for (Connection& attacker : connections(attackers)) {
    bool isTaken = attacker.send(GetParam().begin);
    for (std::size_t sent = 0; isTaken && sent < bytesTried; sent += more.size()) {
      isTaken = attacker.send(more);
    }
    accepted += isTaken ? 1U : 0U;
  }

  EXPECT_EQ(accepted, 0U) << "each is refused long before";
  EXPECT_LT(viewer.peakMemoryKilobytes(), test::viewerMemoryKilobytes);
  expectThatAGoodBrowserIsAnswered();
}

INSTANTIATE_TEST_SUITE_P(
    Of, AnEndlessRequest,
    testing::Values(EndlessRequest{"OneLine", "GET /", "aaaaaaaaaaaaaaaa"},
                    EndlessRequest{"OneHeader", "GET / HTTP/1.1\r\nHost: 127.0.0.1\r\nX: ", "bbbbbbbbbbbbbbbb"},
                    EndlessRequest{"ManyHeaders", "GET / HTTP/1.1\r\nHost: camera.example\r\n", "X-Header: value\r\n"},
                    EndlessRequest{"ManyParameters", "GET /?", "parameter=value&"},
                    EndlessRequest{"OneBody",
                                   "POST /setup.json HTTP/1.1\r\nHost: 127.0.0.1\r\nContent-Length: 99999999\r\n\r\n",
                                   "cccccccccccccccc"},
                    EndlessRequest{"ManyChunks",
                                   "POST /setup.json HTTP/1.1\r\nHost: 127.0.0.1\r\nTransfer-Encoding: chunked\r\n\r\n",
                                   "10\r\ndddddddddddddddd\r\n"}),
    [](const auto& request) { return request.param.name; });

TEST_F(AViewerUnderAttack, AnswersAGoodBrowserWhileHundredsOfConnectionsAreIdle) {
  const auto idle = connections(500);

  expectThatAGoodBrowserIsAnswered();
  EXPECT_LT(viewer.peakMemoryKilobytes(), test::viewerMemoryKilobytes);
}

TEST_F(AViewerUnderAttack, AnswersAGoodBrowserWhileHundredsOfRequestsAreIncomplete) {
  auto slow = connections(500);
  const std::string header = "GET / HTTP/1.1\r\nX: " + std::string(12000, 'x');
  for (Connection& each : slow) {
    each.send(header);
  }

  expectThatAGoodBrowserIsAnswered();
  EXPECT_LT(viewer.peakMemoryKilobytes(), test::viewerMemoryKilobytes);
}

TEST_F(AViewerUnderAttack, EndsAtOnceThoughAClientSendsByteAfterByte) {
  Connection slow(viewer.port());
  slow.send("GET / HTTP/1.1\r\nX: ");
  const auto start = std::chrono::steady_clock::now();
  viewer.process.signal(SIGTERM);
  std::atomic<bool> hasEnded = false;
  std::thread sending([&] {
    while (!hasEnded && slow.send("x")) {
      std::this_thread::yield();
    }
  });

  EXPECT_EQ(viewer.process.wait().exitCode, 0);

  EXPECT_LT(std::chrono::steady_clock::now() - start, soon);
  hasEnded = true;
  sending.join();
}

TEST_F(AViewerUnderAttack, EndsAtOnceThoughHundredsOfConnectionsAreOpen) {
  const auto idle = connections(300);
  const Connection silent = viewer.silentBrowser();
  const auto start = std::chrono::steady_clock::now();

  viewer.process.signal(SIGTERM);

  EXPECT_EQ(viewer.process.wait().exitCode, 0);
  EXPECT_LT(std::chrono::steady_clock::now() - start, soon);
}

TEST_F(AViewerUnderAttack, RefusesWhatIsNotHttp) {
  for (const char* garbage : {"\r\n\r\n\r\n\r\n", "\x16\x03\x01\x02\x05\x01", "GET\r\n\r\n", "GET / HTTP/9.9\r\n\r\n",
                              "PRI * HTTP/2.0\r\n\r\nSM\r\n\r\n", "GET / HTTP/1.1\r\n\r\n"}) {
    Connection connection(viewer.port());
    connection.send(garbage);
    connection.endSending();
    const std::string answer = connection.receiveAll();
    EXPECT_TRUE(answer.empty() || answer.rfind("HTTP/1.1 4", 0) == 0 || answer.rfind("HTTP/1.1 5", 0) == 0) << answer;
  }
  expectThatAGoodBrowserIsAnswered();
}

/** A camera whose frames are a megabyte each, because of the names in them, and come as fast as they are taken. */
class ACameraWithLargeFrames : public test::TwoCameras {
 protected:
  ACameraWithLargeFrames() {
    ::VOD::DetectorInformation detector = test::detector();
    detector.mutable_object_classes(0)->set_name(std::string(1000, 'h'));
    test::writeTo(recording / "detector-information.pb", detector.SerializeAsString());
    ::VOD::Scene crowd = test::scene(1);
    while (crowd.detections_size() < 1000) {
      *crowd.add_detections() = crowd.detections(0);
    }
    test::writeScenes(recording, crowd, 300);
    std::filesystem::remove(recording / "scenes.idx");
  }
};

TEST_F(ACameraWithLargeFrames, IsViewedInBoundedMemory) {
  const test::Viewer viewer({"--camera", "1"}, playing("max"));

  // A machine that keeps up shows all frames, a slower one drops some.
  int shown = 0;
  viewer.receive([&](const test::Event& event) {
    shown += event.name == "frame" ? 1 : 0;
    return shown > 100 || (event.name == "state" && event.json()["framesDropped"].get<std::uint64_t>() > 20);
  });

  EXPECT_LT(viewer.peakMemoryKilobytes(), test::viewerMemoryKilobytes);
}

/** A viewer of a recording whose answers are long. */
class AViewerOfACrowd : public testing::Test {
 protected:
  AViewerOfACrowd() {
    std::filesystem::create_directory(recording);
    test::writeTo(recording / "detector-information.pb", test::detector().SerializeAsString());
    ::VOD::Scene crowd = test::scene(0);
    for (int copy = 0; copy < 1000; ++copy) {
      *crowd.add_detections() = crowd.detections(0);
    }
    test::writeScenes(recording, crowd, 50);
  }

  const test::TemporaryFolder folder;
  const std::filesystem::path recording = folder / "crowd";
};

TEST_F(AViewerOfACrowd, KeepsItsMemoryThoughManyDoNotReadTheirAnswers) {
  const test::Viewer viewer({"--recording", recording}, {});
  std::vector<Connection> silent;
  for (int count = 0; count < test::silentReaders; ++count) {
    silent.emplace_back(viewer.port(), 4096);
    silent.back().send(test::requestFor("/frames.json?first=0&count=200", viewer.port()));
  }

  // Each refusal closes the oldest of those that do not read.
  test::Answer answer = viewer.get("/frames.json?first=0&count=1");
  for (int attempt = 0; answer.status == 503 && attempt < 100; ++attempt) {
    answer = viewer.get("/frames.json?first=0&count=1");
  }

  EXPECT_EQ(answer.status, 200);
  EXPECT_EQ(nlohmann::json::parse(answer.body).size(), 1U);
  EXPECT_LT(viewer.peakMemoryKilobytes(), test::viewerMemoryKilobytes);
}

}  // namespace
