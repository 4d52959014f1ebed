// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "base/errors.h"
#include "situations.h"
#include "viewer.h"
#include "viewer/self_contained_page.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <zlib.h>

#include <random>

using nlohmann::json;
using tarn::command::SelfContainedPage;
using testing::HasSubstr;
using testing::Not;
using testing::SizeIs;
using testing::StartsWith;

namespace {

std::string bytesOfBase64(const std::string& text) {
  const std::string digits = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  std::string bytes;
  unsigned bits = 0;
  int count = 0;
  for (const char digit : text.substr(0, text.find('='))) {
    bits = bits << 6U | static_cast<unsigned>(digits.find(digit));
    count += 6;
    if (count >= 8) {
      count -= 8;
      bytes += static_cast<char>(bits >> static_cast<unsigned>(count) & 0xFFU);
    }
  }
  return bytes;
}

/** What a page holds as the answer to a request. */
std::string answerIn(const std::string& page, const std::string& escapedPath) {
  const std::string start = "id=\"" + escapedPath + "\">";
  const std::size_t at = page.find(start);
  if (at == std::string::npos) {
    ADD_FAILURE() << "the page has no " << escapedPath;
    return "null";
  }
  const std::size_t begin = at + start.size();
  const std::string bytes = bytesOfBase64(page.substr(begin, page.find("</script>", begin) - begin));
  std::string text(1U << 20U, '\0');
  uLongf size = text.size();
  EXPECT_EQ(uncompress(reinterpret_cast<Bytef*>(text.data()), &size, reinterpret_cast<const Bytef*>(bytes.data()),
                       bytes.size()),
            Z_OK);
  text.resize(size);
  return text;
}

class RenderAsAPage : public test::TwoCameras {
 protected:
  test::Outcome render(std::vector<std::string> arguments) const {
    arguments.insert(arguments.begin(), {"render", "--html"});
    arguments.insert(arguments.end(), {"--output", folder / "page.html"});
    return test::run(arguments);
  }

  std::string page() const { return test::contentsOf(folder / "page.html"); }
};

TEST_F(RenderAsAPage, HoldsWhatAViewerWouldAnswer) {
  const test::Outcome outcome = render({recording});
  const test::Viewer viewer({recording}, {});

  EXPECT_EQ(outcome.exitCode, 0);
  EXPECT_THAT(outcome.errors, testing::IsEmpty());
  EXPECT_THAT(page(), StartsWith("<!doctype html>"));
  EXPECT_THAT(page(), HasSubstr("<title>recording</title>"));
  EXPECT_EQ(answerIn(page(), "/setup.json"), viewer.get("/setup.json").body);
  EXPECT_EQ(answerIn(page(), "/recording.json"), viewer.get("/recording.json").body);
  EXPECT_EQ(answerIn(page(), "/frames.json?recording=1&amp;first=0&amp;count=20"),
            viewer.get("/frames.json?recording=1&first=0&count=20").body);
}

TEST_F(RenderAsAPage, RefersToNoOtherFile) {
  render({recording});

  EXPECT_THAT(page(), Not(HasSubstr(" src=")));
  EXPECT_THAT(page(), Not(HasSubstr("rel=\"stylesheet\"")));
  EXPECT_THAT(page(), HasSubstr("default-src 'none'; script-src 'nonce-page'; style-src 'nonce-page'; img-src data:;"));
}

TEST_F(RenderAsAPage, HoldsTheFramesOfEveryRecordingInPieces) {
  test::writeScenes(recording, test::scene(0), 250);
  std::filesystem::remove(recording / "scenes.idx");

  EXPECT_EQ(render({recording, recording}).exitCode, 0);

  EXPECT_THAT(page(), HasSubstr("<title>recording, recording</title>"));
  EXPECT_EQ(json::parse(answerIn(page(), "/recording-2.json"))["frames"], 250);
  for (const char* path : {"first=0&amp;count=100", "first=100&amp;count=100"}) {
    EXPECT_THAT(json::parse(answerIn(page(), "/frames.json?recording=2&amp;" + std::string(path))), SizeIs(100));
  }
  EXPECT_THAT(json::parse(answerIn(page(), "/frames.json?recording=2&amp;first=200&amp;count=50")), SizeIs(50));
}

TEST_F(RenderAsAPage, HoldsTheBackgroundOfTheRecordingOrTheOneThatIsNamed) {
  test::writeTo(recording / "background.jpg", "\xFF\xD8\xFFstreet");
  test::writeTo(folder / "other.jpg", "\xFF\xD8\xFFother");

  render({recording});
  EXPECT_EQ(json::parse(answerIn(page(), "/setup.json"))["backgrounds"],
            (json{{"1", "data:image/jpeg;base64,/9j/c3RyZWV0"}}));

  render({recording, "--background", folder / "other.jpg"});
  EXPECT_EQ(json::parse(answerIn(page(), "/setup.json"))["backgrounds"],
            (json{{"1", "data:image/jpeg;base64,/9j/b3RoZXI="}}));
}

TEST_F(RenderAsAPage, OfADamagedRecordingShowsWhatCanBeReadAndFails) {
  const std::string bytes = test::contentsOf(recording / "scenes.pb");
  test::writeTo(recording / "scenes.pb", bytes.substr(0, bytes.size() - 3));

  const test::Outcome outcome = render({recording});

  EXPECT_EQ(outcome.exitCode, 1);
  EXPECT_TRUE(test::isOneLine(outcome.errors));
  EXPECT_THAT(outcome.errors, HasSubstr("page.html shows what could be read"));
  EXPECT_EQ(json::parse(answerIn(page(), "/recording.json"))["frames"], 19);
}

TEST_F(RenderAsAPage, OfASingleFrameFails) {
  test::writeTo(folder / "frame.pb", test::scene(0).SerializeAsString());

  const test::Outcome outcome = render({folder / "frame.pb"});

  EXPECT_EQ(outcome.exitCode, 1);
  EXPECT_THAT(outcome.errors, HasSubstr("frame.pb: a page shows recordings, and this is not a folder"));
  EXPECT_EQ(render({recording, "--frame", "1"}).exitCode, 2);
}

TEST_F(RenderAsAPage, OfMoreRecordingsThanAreShownInStepIsAUsageError) {
  const test::Outcome outcome = render(std::vector<std::string>(17, recording));

  EXPECT_EQ(outcome.exitCode, 2);
  EXPECT_THAT(outcome.errors, HasSubstr("a page shows up to 16 recordings"));
}

TEST(APageOfMoreThan24MiB, IsRefusedAndNamesTheWayOut) {
  std::minstd_rand random(1);
  std::string incompressible(3U << 20U, '\0');
  for (char& byte : incompressible) {
    byte = static_cast<char>(random() >> 8U);
  }

  SelfContainedPage page;
  std::size_t pieces = 0;
  std::string reason;
  while (reason.empty() && pieces < 10) {
    try {
      page.add("/frames.json", incompressible);
      ++pieces;
    } catch (const tarn::command::Failure& failure) {
      reason = failure.what();
    }
  }

  EXPECT_EQ(pieces, 5U) << "each takes a little more than 4 MiB as text";
  EXPECT_THAT(reason, HasSubstr("larger than 24 MiB; 'tarnvod cut' makes"));
}

}  // namespace
