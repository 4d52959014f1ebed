// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "situations.h"
#include "viewer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>

#include <deque>
#include <map>
#include <regex>
#include <set>
#include <sstream>
#include <vector>

using nlohmann::json;
using testing::AllOf;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;
using testing::StartsWith;

namespace {

class View : public test::TwoCameras {
 protected:
  /** What `watch --json` prints of each frame, by its time stamp. */
  std::map<std::uint64_t, std::string> watchedFrames() const {
    const test::Outcome outcome = test::run({"watch", "--camera", "1", "--frames", "20", "--json"}, playing("20"));
    std::map<std::uint64_t, std::string> frames;
    std::istringstream stream(outcome.output);
    for (std::string line; std::getline(stream, line);) {
      frames[json::parse(line)["timestamp"].get<std::uint64_t>()] = line;
    }
    return frames;
  }
};

TEST_F(View, WithoutNamesShowsAllCameras) {
  const test::Viewer viewer({}, playing());

  EXPECT_EQ(json::parse(viewer.get("/setup.json").body)["cameras"], (json{1, 2}));
}

TEST_F(View, TakesCameraNumbersWithoutAnOption) {
  const test::Viewer viewer({"2"}, playing());

  EXPECT_EQ(json::parse(viewer.get("/setup.json").body)["cameras"], (json{2}));
}

TEST_F(View, SendsAPageThatJoinsWhatWasBefore) {
  const test::Viewer viewer({"--camera", "1"}, playing());
  viewer.receive([count = 0](const test::Event& event) mutable { return event.name == "frame" && ++count == 12; });

  json past;
  viewer.receive([&](const test::Event& event) {
    past = event.name == "past" ? event.json() : past;
    return event.name == "past";
  });

  ASSERT_THAT(past["cameras"], SizeIs(1));
  EXPECT_EQ(past["cameras"][0]["camera"], 1);
  const json track = past["cameras"][0]["tracks"][0];
  EXPECT_EQ(track["objectId"], 7);
  EXPECT_EQ(track["className"], "human");
  EXPECT_GT(track["last"], track["first"]);
}

TEST_F(View, SendsTheBackgroundOfEachCamera) {
  test::writeTo(folder / "yard.jpg", "\xFF\xD8\xFFyard");
  const test::Viewer viewer({"1", "2", "--background", "2=" + (folder / "yard.jpg").string()}, playing());

  const json backgrounds = json::parse(viewer.get("/setup.json").body)["backgrounds"];

  EXPECT_EQ(backgrounds, (json{{"2", "/background-2"}}));
  EXPECT_EQ(viewer.get("/background-2").header("Content-Type"), "image/jpeg");
  EXPECT_EQ(viewer.get("/background-2").body, "\xFF\xD8\xFFyard");
}

TEST_F(View, OfABackgroundThatIsNoPictureFails) {
  test::writeTo(folder / "notes.txt", "notes");

  const test::Outcome outcome = test::run({"view", "1", "--background", folder / "notes.txt"}, playing());

  EXPECT_EQ(outcome.exitCode, 1);
  EXPECT_TRUE(test::isOneLine(outcome.errors));
  EXPECT_THAT(outcome.errors, HasSubstr("neither a PNG nor a JPEG"));
}

TEST_F(View, PrintsWhereItsPageIsAndNothingElse) {
  const test::Viewer viewer({"--camera", "1"}, playing());

  EXPECT_EQ(viewer.process.output(), "http://127.0.0.1:" + std::to_string(viewer.port()) + "/\n");
}

TEST_F(View, ServesAPageOfItsOwnFilesOnly) {
  const test::Viewer viewer({"--camera", "1"}, playing());
  const test::Answer page = viewer.get("/");

  EXPECT_EQ(page.status, 200);
  EXPECT_EQ(page.header("Content-Type"), "text/html; charset=utf-8");
  EXPECT_THAT(page.body, StartsWith("<!doctype html>"));
  EXPECT_THAT(page.body, HasSubstr("<script type=\"module\" src=\"main.js\"></script>"));
  EXPECT_THAT(page.body, Not(HasSubstr("https:")));
  EXPECT_EQ(viewer.get("/page.css").header("Content-Type"), "text/css; charset=utf-8");
}

TEST_F(View, ServesEachModuleThatAnotherImports) {
  const test::Viewer viewer({"--camera", "1"}, playing());

  std::set<std::string> seen;
  std::deque<std::string> paths{"main.js"};
  const std::regex import("from '\\./([a-z_-]+\\.js)'");
  for (; !paths.empty(); paths.pop_front()) {
    const test::Answer script = viewer.get('/' + paths.front());
    EXPECT_EQ(script.status, 200) << paths.front();
    EXPECT_EQ(script.header("Content-Type"), "text/javascript; charset=utf-8");
    for (std::sregex_iterator match(script.body.begin(), script.body.end(), import); match != std::sregex_iterator();
         ++match) {
      if (seen.insert((*match)[1]).second) {
        paths.push_back((*match)[1]);
      }
    }
  }
  EXPECT_THAT(seen, SizeIs(testing::Ge(9U)));
}

TEST_F(View, AllowsThePageItsOwnFilesOnly) {
  const test::Answer page = test::Viewer({"--camera", "1"}, playing()).get("/");

  EXPECT_EQ(page.header("Content-Security-Policy"),
            "default-src 'none'; script-src 'self'; style-src 'self'; connect-src 'self'; img-src 'self' data:; "
            "base-uri 'none'; form-action 'none'; frame-ancestors 'none'; require-trusted-types-for 'script'; "
            "trusted-types 'none'");
}

TEST_F(View, LetsNoAnswerBeKeptGuessedOrEmbeddedElsewhere) {
  const test::Viewer viewer({"--camera", "1"}, playing());

  for (const char* path : {"/", "/setup.json", "/nowhere"}) {
    const test::Answer answer = viewer.get(path);
    EXPECT_EQ(answer.header("Cache-Control"), "no-store");
    EXPECT_EQ(answer.header("X-Content-Type-Options"), "nosniff");
    EXPECT_EQ(answer.header("Referrer-Policy"), "no-referrer");
    EXPECT_EQ(answer.header("Cross-Origin-Resource-Policy"), "same-origin");
  }
  EXPECT_EQ(viewer.get("/nowhere").status, 404);
}

TEST_F(View, RefusesRequestsThatNameAnotherHost) {
  const test::Viewer viewer({"--camera", "1"}, playing());

  for (const char* path : {"/", "/events", "/setup.json"}) {
    const test::Answer answer = viewer.get(path, {{"Host", "camera.example:" + std::to_string(viewer.port())}});
    EXPECT_EQ(answer.status, 403);
    EXPECT_THAT(answer.body, HasSubstr("answers no requests for other hosts"));
  }
  EXPECT_EQ(viewer.get("/", {{"Host", "localhost:" + std::to_string(viewer.port())}}).status, 200);
}

TEST_F(View, RefusesWhatThePageOfAnotherSiteAsksFor) {
  const test::Viewer viewer({"--camera", "1"}, playing());

  EXPECT_EQ(viewer.get("/setup.json", {{"Sec-Fetch-Site", "cross-site"}}).status, 403);
  EXPECT_EQ(viewer.get("/setup.json", {{"Sec-Fetch-Site", "same-origin"}}).status, 200);
  EXPECT_EQ(viewer.get("/", {{"Sec-Fetch-Site", "cross-site"}}).status, 200) << "that is a link to the page";
}

TEST_F(View, GivesThePageCamerasBoxesAndShape) {
  const test::Viewer viewer({"--camera", "2", "1", "--box", "size", "--range", "0,0,1920,1080"}, playing());

  const json setup = json::parse(viewer.get("/setup.json").body);

  EXPECT_EQ(setup["mode"], "live");
  EXPECT_EQ(setup["cameras"], (json{1, 2}));
  EXPECT_EQ(setup["boxes"], (json{{"form", "size"}, {"range", {0.0, 0.0, 1920.0, 1080.0}}}));
  EXPECT_NEAR(setup["aspect"].get<double>(), 16.0 / 9.0, 1e-6);
}

TEST_F(View, SendsTheFramesThatWatchShows) {
  const auto watched = watchedFrames();
  ASSERT_THAT(watched, SizeIs(test::framesInRecording));
  const test::Viewer viewer({"--camera", "1"}, playing("5"));

  std::set<std::uint64_t> seen;
  viewer.receive([&](const test::Event& event) {
    if (event.name == "frame") {
      const auto timestamp = event.json()["timestamp"].get<std::uint64_t>();
      EXPECT_EQ(event.data, watched.at(timestamp));
      seen.insert(timestamp);
    }
    return seen.size() == watched.size();
  });
}

TEST_F(View, GivesTheFramesOfTheLastMinutesAgain) {
  const test::Viewer viewer({"--camera", "1"}, playing());
  std::vector<json> seen;
  viewer.receive([&](const test::Event& event) {
    if (event.name == "frame") {
      seen.push_back(event.json());
    }
    return seen.size() == 5;
  });

  const json kept = json::parse(viewer.get("/past.json?from=0").body)["frames"];

  ASSERT_GE(kept.size(), seen.size());
  std::vector<json> frames;
  for (const json& each : kept) {
    EXPECT_TRUE(each["at"].is_number_integer());
    frames.push_back(each["frame"]);
  }
  EXPECT_THAT(frames, testing::IsSupersetOf(seen));
  EXPECT_EQ(viewer.get("/past.json?from=9223372036854775808").body, "{\"frames\":[],\"more\":false}\n");
  EXPECT_EQ(viewer.get("/past.json").status, 400);
}

TEST_F(View, ReportsHowACameraIs) {
  const test::Viewer viewer({"--camera", "1"}, playing());

  json state;
  viewer.receive([&](const test::Event& event) {
    state = event.name == "state" ? event.json()["cameras"][0] : state;
    return !state.is_null() && state["frames"] > 5;
  });

  EXPECT_EQ(state["camera"], 1);
  EXPECT_EQ(state["state"], "receiving");
  EXPECT_EQ(state["problem"], "");
  EXPECT_NEAR(state["framesPerSecond"].get<double>(), 10, 3);
  EXPECT_LT(state["secondsSinceFrame"].get<double>(), 1);
}

TEST_F(View, OfOneClassSendsNoOther) {
  const test::Viewer viewer({"--camera", "1", "--class", "car"}, playing("20"));

  std::set<std::string> classes;
  int frames = 0;
  viewer.receive([&](const test::Event& event) {
    if (event.name == "frame") {
      const json frame = event.json();
      for (const json& detection : frame["detections"]) {
        classes.insert(detection["className"].get<std::string>());
      }
      ++frames;
    }
    return frames == test::framesInRecording;
  });

  EXPECT_THAT(classes, testing::ElementsAre("car"));
}

TEST_F(View, ReportsAnOutageAndItsEnd) {
  test::Viewer viewer({"--camera", "1"}, playing());
  viewer.receive([](const test::Event& event) { return event.name == "frame"; });

  viewer.process.write("down");
  json camera;
  viewer.receive([&](const test::Event& event) {
    camera = event.name == "state" ? event.json()["cameras"][0] : camera;
    return camera.is_object() && camera["state"] == "waiting";
  });
  EXPECT_THAT(camera["problem"].get<std::string>(),
              AllOf(StartsWith("no frame for "), HasSubstr("the service does not answer")));

  viewer.process.write("up");
  json state;
  viewer.receive([&](const test::Event& event) {
    state = event.name == "state" ? event.json() : state;
    return state.is_object() && state["cameras"][0]["state"] == "receiving" && !state["statusChanges"].empty() &&
           state["statusChanges"].back()["text"].get<std::string>().find("frames are back") != std::string::npos;
  });
  EXPECT_EQ(state["cameras"][0]["problem"], "");
  EXPECT_EQ(state["cameras"][0]["interruptions"], 1);
  EXPECT_THAT(state["statusChanges"].back()["text"].get<std::string>(), StartsWith("camera 1: frames are back after "));
}

TEST_F(View, GoesOnForOthersWhenABrowserDoesNotRead) {
  const test::Viewer viewer({"--camera", "1"}, playing("50"));
  const test::Connection silent = viewer.silentBrowser();

  std::uint64_t dropped = 0;
  std::size_t frames = 0;
  viewer.receive([&](const test::Event& event) {
    frames += event.name == "frame" ? 1U : 0U;
    dropped = event.name == "state" ? event.json()["framesDropped"].get<std::uint64_t>() : dropped;
    return frames == 1500;  // some times more than fits into the buffers of the connection that is not read
  });

  EXPECT_EQ(dropped, 0U) << "the service's thread never waited";
}

TEST_F(View, TakesEightBrowsersAndNewOnesWhenTheyAreGone) {
  const test::Viewer viewer({"--camera", "1"}, playing());
  {
    std::deque<test::Connection> browsers;
    for (int count = 0; count < 8; ++count) {
      EXPECT_EQ(browsers.emplace_back(viewer.silentBrowser()).receiveLine(), "HTTP/1.1 200 OK");
    }
    const test::Answer refusal = viewer.get("/events");
    EXPECT_EQ(refusal.status, 503);
    EXPECT_THAT(refusal.body, HasSubstr("No more than 8 browsers"));
    EXPECT_EQ(viewer.get("/").status, 200);
  }

  const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(60);
  while (viewer.silentBrowser().receiveLine() != "HTTP/1.1 200 OK") {
    ASSERT_LT(std::chrono::steady_clock::now(), deadline) << "those that vanished keep their places";
  }
}

class ViewAskedToEnd : public test::TwoCameras, public testing::WithParamInterface<int> {};

TEST_P(ViewAskedToEnd, EndsInOrderWhateverBrowsersDo) {
  test::Viewer viewer({"--camera", "1"}, playing("100"));
  const test::Connection silent = viewer.silentBrowser();
  viewer.receive([](const test::Event& event) { return event.name == "frame"; });

  viewer.process.signal(GetParam());

  const test::Outcome outcome = viewer.process.wait();
  EXPECT_EQ(outcome.exitCode, 0);
  EXPECT_THAT(outcome.errors, IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(BySignal, ViewAskedToEnd, testing::Values(SIGINT, SIGTERM, SIGHUP));

TEST_F(View, AtAPortThatIsTakenFails) {
  const test::Viewer viewer({"--camera", "1"}, playing());

  const test::Outcome outcome =
      test::run({"view", "--camera", "1", "--port", std::to_string(viewer.port())}, playing());

  EXPECT_EQ(outcome.exitCode, 1);
  EXPECT_TRUE(test::isOneLine(outcome.errors));
  EXPECT_THAT(outcome.errors,
              HasSubstr("cannot listen at 127.0.0.1:" + std::to_string(viewer.port()) + ": Address already in use"));
}

TEST_F(View, AtAnAddressOfAnotherMachineFails) {
  const test::Outcome outcome = test::run({"view", "--camera", "1", "--address", "192.0.2.1"}, playing());

  EXPECT_EQ(outcome.exitCode, 1);
  EXPECT_TRUE(test::isOneLine(outcome.errors));
  EXPECT_THAT(outcome.errors, HasSubstr("192.0.2.1"));
}

TEST_F(View, OfAnUnknownClassNamesTheKnownOnes) {
  const test::Outcome outcome = test::run({"view", "--port", "0", "--camera", "1", "--class", "Unicorn"}, playing());

  EXPECT_EQ(outcome.exitCode, 1);
  EXPECT_THAT(outcome.output, IsEmpty());
  EXPECT_THAT(outcome.errors, HasSubstr("it knows 'car', 'human'"));
}

TEST_F(View, OfACameraThatIsNotThereFails) {
  const test::Outcome outcome = test::run({"view", "--port", "0", "--camera", "7"}, playing());

  EXPECT_EQ(outcome.exitCode, 1);
  EXPECT_TRUE(test::isOneLine(outcome.errors));
  EXPECT_THAT(outcome.errors, HasSubstr("camera 7"));
}

}  // namespace
