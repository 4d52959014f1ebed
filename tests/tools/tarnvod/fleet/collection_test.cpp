// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "fleet/collection.h"

#include "fleet/audit.h"
#include "fleet/collection_database.h"
#include "fleet/messages.h"
#include "fleet/topics.h"
#include "records/frame_json.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <tools/tarnvod/situations.h>

#include <memory>
#include <sstream>
#include <string>
#include <vector>

#ifdef TARNVOD_WITH_POSTGRESQL
#include "postgres.h"
#endif

using namespace tarn::command;
using namespace tarn::VOD;

namespace {

const Origin origin{"north", "gate", "0123456789abcdef"};

/** The tests run with each kind of database. */
enum class Kind { Sqlite, Postgres };

const auto kinds = testing::Values(
#ifdef TARNVOD_WITH_POSTGRESQL
    Kind::Postgres,
#endif
    Kind::Sqlite);

std::string nameOf(const testing::TestParamInfo<Kind>& info) {
  return info.param == Kind::Sqlite ? "SQLite" : "PostgreSQL";
}

class ACollection : public testing::TestWithParam<Kind> {
 protected:
  ~ACollection() override { EXPECT_TRUE(isCommitted_); }

  static CollectedFrame frame(std::uint64_t sequence, std::uint64_t timestamp = 0) {
    const DetectionData data{timestamp,
                             {{0, 0, 1, 1, 7, "human", 80, DetectionStatus::Untracked, {{"coat", "red", 5}}, {}}},
                             {{EventAction::Delete, 7, {8}}}};
    const auto message = readMessage(framesTopic("north", "gate", 1), frameJson(data, origin, {1, sequence, 1, false}));
    return std::get<CollectedFrame>(message);
  }

  static CollectedStatus status(const std::string& state, std::uint64_t numbered, const std::string& start) {
    return {{"north", "gate", start}, state, {{1, "Receiving", "", 1, numbered}}, "{}"};
  }

  void addFrames(std::uint64_t first, std::uint64_t last) {
    for (std::uint64_t sequence = first; sequence <= last; ++sequence) {
      collection.add(frame(sequence));
    }
  }

  void commit() {
    collection.commit();
    isCommitted_ = true;
  }

  CameraAccount account(const AuditOptions& options = {}) {
    commit();
    return audit(*opened(), options).at(0);
  }

  std::int64_t count(const char* query) {
    commit();
    const auto database = opened();
    Statement statement(*database, query);
    statement.start();
    EXPECT_TRUE(statement.next());
    return statement.number(0);
  }

  std::unique_ptr<Database> opened() const { return openCollection(name, Database::Access::Read); }

  void SetUp() override { collection.begin(); }

 private:
  std::string emptyDatabase() const {
#ifdef TARNVOD_WITH_POSTGRESQL
    if (GetParam() == Kind::Postgres) {
      return test::PostgresServer::emptied().url();
    }
#endif
    return folder_ / "fleet.db";
  }

  const test::TemporaryFolder folder_;
  bool isCommitted_ = false;

 protected:
  const std::string name = emptyDatabase();
  Collection collection{name};
};

TEST_P(ACollection, StoresAFrameWithAllThatIsInIt) {
  EXPECT_EQ(collection.add(frame(1, 5)), Collection::Outcome::Stored);

  EXPECT_EQ(count("SELECT count(*) FROM frames JOIN sources USING (source) JOIN detections USING (frame)"
                  " JOIN attributes USING (detection) JOIN events USING (frame) WHERE sequence = 1 AND timestamp = 5"
                  " AND site = 'north' AND device = 'gate' AND camera = 1 AND detections.className = 'human'"
                  " AND attributes.className = 'red' AND action = 'Delete' AND objectIds = '[8]'"),
            1);
}

TEST_P(ACollection, StoresAFrameOnce) {
  addFrames(1, 1);

  EXPECT_EQ(collection.add(frame(1)), Collection::Outcome::Repeated);

  const CameraAccount result = account();
  EXPECT_EQ(result.stored, 1U);
  EXPECT_EQ(result.repeated, 1U);
  EXPECT_EQ(result.missing, 0U);
}

TEST_P(ACollection, KeepsTheFirstOfTwoFramesOfANumber) {
  addFrames(1, 1);

  EXPECT_EQ(collection.add(frame(1, 999)), Collection::Outcome::Conflicting);

  EXPECT_EQ(account().conflicting, 1U);
  const auto database = opened();
  Statement timestamps(*database, "SELECT timestamp FROM frames");
  timestamps.start();
  ASSERT_TRUE(timestamps.next());
  EXPECT_EQ(timestamps.number(0), 0);
}

TEST_P(ACollection, RefusesANumberThatIsTooFarAhead) {
  addFrames(1, 1);

  EXPECT_THROW(collection.add(frame(1'000'000'000)), Refusal);
  EXPECT_THROW(collection.add(CollectedNote{origin, {1, origin.start, 2, 1'000'000'000}}), Refusal);
  EXPECT_THROW(collection.add(status("running", 1'000'000'000, origin.start)), Refusal);

  EXPECT_EQ(account().missing, 0U);
}

TEST_P(ACollection, StoresNothingOfAStatusThatItRefuses) {
  addFrames(1, 1);

  EXPECT_THROW(collection.add(status("running", 1'000'000'000, origin.start)), Refusal);

  EXPECT_EQ(count("SELECT count(*) FROM publishers"), 0);
}

TEST_P(ACollection, KnowsTheHighestNumberAfterARestart) {
  addFrames(1, 1);
  commit();
  Collection next(name);
  next.begin();

  EXPECT_THROW(next.add(frame(1'000'000'000)), Refusal);

  next.commit();
}

TEST_P(ACollection, CountsRefusalsByReason) {
  collection.countRefusal("not JSON", "a");
  collection.countRefusal("not JSON", "b");

  EXPECT_EQ(count("SELECT count FROM refused WHERE reason = 'not JSON' AND topic = 'b'"), 2);
}

TEST_P(ACollection, KeepsEachStateOfACameraOnce) {
  collection.add(status("running", 0, origin.start));
  collection.add(status("running", 5, origin.start));

  EXPECT_EQ(count("SELECT count(*) FROM states WHERE state = 'Receiving'"), 1);
}

TEST_P(ACollection, NumbersTheDetectionsOfAllFrames) {
  addFrames(1, 3);

  EXPECT_EQ(count("SELECT count(DISTINCT detection) FROM attributes JOIN detections USING (detection)"), 3);
}

TEST_P(ACollection, StoresNothingOfWhatIsNotCommitted) {
  addFrames(1, 1);
  commit();
  {
    Collection ended(name);
    ended.begin();
    ended.add(frame(2));
  }

  const auto database = opened();
  Statement frames(*database, "SELECT count(*) FROM frames");
  frames.start();
  ASSERT_TRUE(frames.next());
  EXPECT_EQ(frames.number(0), 1);
}

TEST_P(ACollection, KeepsAText) {
  const std::string text = "it's \\ \"Stra\xC3\x9F\x65\" ?1";
  collection.countRefusal(text, "a");
  commit();

  const auto database = opened();
  Statement reasons(*database, "SELECT reason FROM refused");
  reasons.start();
  ASSERT_TRUE(reasons.next());
  EXPECT_EQ(reasons.text(0), text);
}

TEST_P(ACollection, AnswersTheQueriesOfTheGuide) {
  addFrames(1, 3);
  collection.add(status("running", 3, origin.start));
  commit();
  std::istringstream guide(test::contentsOf(TARNVOD_FLEET_GUIDE));
  const auto database = opened();

  int queries = 0;
  for (std::string line; std::getline(guide, line);) {
    if (line.rfind("SELECT", 0) == 0) {
      std::string query;
      for (; line != "```" && !guide.eof(); std::getline(guide, line)) {
        query += line + '\n';
      }
      Statement statement(*database, query.c_str());
      statement.start();
      static_cast<void>(statement.next());
      ++queries;
    }
  }

  EXPECT_GE(queries, 2);
}

using AnAudit = ACollection;

TEST_P(AnAudit, OfFramesWithoutGapsFindsNothing) {
  addFrames(1, 10);

  const CameraAccount result = account();

  EXPECT_EQ(result.numbered, 10U);
  EXPECT_EQ(result.stored, 10U);
  EXPECT_EQ(result.missing, 0U);
}

TEST_P(AnAudit, FindsTheFramesThatAreMissing) {
  addFrames(1, 3);
  addFrames(6, 6);
  addFrames(8, 9);

  const CameraAccount result = account();

  EXPECT_EQ(result.numbered, 9U);
  EXPECT_EQ(result.missing, 3U);
  EXPECT_EQ(result.missingSince, 1);
  const std::vector<FrameRange> expected{{1, origin.start, 4, 5}, {1, origin.start, 7, 7}};
  EXPECT_EQ(result.missingFrames, expected);
}

TEST_P(AnAudit, CountsWhatTheDeviceDroppedApart) {
  addFrames(1, 2);
  addFrames(9, 9);
  collection.add(CollectedNote{origin, {1, origin.start, 3, 4}});
  collection.add(CollectedNote{origin, {1, origin.start, 6, 8}});

  const CameraAccount result = account();

  EXPECT_EQ(result.dropped, 5U);
  EXPECT_EQ(result.missing, 1U);
  EXPECT_EQ(result.numbered, result.stored + result.dropped + result.missing);
}

TEST_P(AnAudit, DoesNotCountADroppedFrameThatIsStored) {
  addFrames(1, 3);
  collection.add(CollectedNote{origin, {1, origin.start, 2, 4}});

  const CameraAccount result = account();

  EXPECT_EQ(result.stored, 3U);
  EXPECT_EQ(result.dropped, 1U);
  EXPECT_EQ(result.missing, 0U);
}

TEST_P(AnAudit, MissesTheEndOfAStartThatHasEnded) {
  addFrames(1, 2);
  collection.add(status("running", 5, origin.start));
  collection.add(status("running", 0, "ffffffffffffffff"));

  EXPECT_EQ(account().missing, 3U);
}

TEST_P(AnAudit, WaitsForTheEndOfAStartThatRuns) {
  addFrames(1, 2);
  collection.add(status("running", 5, origin.start));

  const CameraAccount result = account();

  EXPECT_EQ(result.waiting, 3U);
  EXPECT_EQ(result.missing, 0U);
}

TEST_P(AnAudit, CountsFramesBeforeTheFirstUnlessAskedNotTo) {
  addFrames(4, 5);

  EXPECT_EQ(account().missing, 3U);
  AuditOptions options;
  options.fromFirstStored = true;
  EXPECT_EQ(audit(*opened(), options).at(0).missing, 0U);
}

TEST_P(AnAudit, CountsLateFramesWhoseClockWasSet) {
  CollectedFrame late = frame(1);
  late.envelope.clockSet = true;
  collection.add(late);
  addFrames(2, 2);

  EXPECT_EQ(account().late, 1U);
}

INSTANTIATE_TEST_SUITE_P(Databases, ACollection, kinds, nameOf);
INSTANTIATE_TEST_SUITE_P(Databases, AnAudit, kinds, nameOf);

TEST(AnSqliteFileWithoutTables, FailsItsAudit) {
  const test::TemporaryFolder folder;
  const auto database = openCollection(folder / "fleet.db", Database::Access::Create);
  database->run("DROP TABLE sources");

  EXPECT_THROW(audit(*database, {}), Failure);
}

}  // namespace
