// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "fleet/collection.h"

#include "base/errors.h"
#include "fleet/audit.h"
#include "fleet/messages.h"
#include "fleet/topics.h"
#include "records/frame_json.h"

#include <gtest/gtest.h>
#include <support/temporary_folder.h>

#include <string>
#include <vector>

using namespace tarn::command;
using namespace tarn::VOD;

namespace {

const Origin origin{"north", "gate", "0123456789abcdef"};

class ACollection : public testing::Test {
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
    const Database database(file, file, Database::Access::Read);
    return audit(database, options).at(0);
  }

  std::int64_t count(const char* query) {
    commit();
    const Database database(file, file, Database::Access::Read);
    Statement statement(database, query);
    statement.start();
    EXPECT_TRUE(statement.next());
    return statement.number(0);
  }

  void SetUp() override { collection.begin(); }

 private:
  const tarn::test::TemporaryFolder folder_;
  bool isCommitted_ = false;

 protected:
  const std::string file = folder_.path() / "fleet.db";
  Collection collection{file};
};

TEST_F(ACollection, StoresAFrameWithAllThatIsInIt) {
  EXPECT_EQ(collection.add(frame(1, 5)), Collection::Outcome::Stored);

  EXPECT_EQ(count("SELECT count(*) FROM frames JOIN sources USING (source) JOIN detections USING (frame)"
                  " JOIN attributes USING (detection) JOIN events USING (frame) WHERE sequence = 1 AND timestamp = 5"
                  " AND site = 'north' AND device = 'gate' AND camera = 1 AND detections.className = 'human'"
                  " AND attributes.className = 'red' AND action = 'Delete' AND objectIds = '[8]'"),
            1);
}

TEST_F(ACollection, StoresAFrameOnce) {
  addFrames(1, 1);

  EXPECT_EQ(collection.add(frame(1)), Collection::Outcome::Repeated);

  const CameraAccount result = account();
  EXPECT_EQ(result.stored, 1U);
  EXPECT_EQ(result.repeated, 1U);
  EXPECT_EQ(result.missing, 0U);
}

TEST_F(ACollection, KeepsTheFirstOfTwoFramesOfANumber) {
  addFrames(1, 1);

  EXPECT_EQ(collection.add(frame(1, 999)), Collection::Outcome::Conflicting);

  EXPECT_EQ(account().conflicting, 1U);
  const Database database(file, file, Database::Access::Read);
  Statement timestamps(database, "SELECT timestamp FROM frames");
  timestamps.start();
  ASSERT_TRUE(timestamps.next());
  EXPECT_EQ(timestamps.number(0), 0);
}

TEST_F(ACollection, RefusesANumberThatIsTooFarAhead) {
  addFrames(1, 1);

  EXPECT_THROW(collection.add(frame(1'000'000'000)), Refusal);
  EXPECT_THROW(collection.add(CollectedNote{origin, {1, origin.start, 2, 1'000'000'000}}), Refusal);
  EXPECT_THROW(collection.add(status("running", 1'000'000'000, origin.start)), Refusal);

  EXPECT_EQ(account().missing, 0U);
}

TEST_F(ACollection, StoresNothingOfAStatusThatItRefuses) {
  addFrames(1, 1);

  EXPECT_THROW(collection.add(status("running", 1'000'000'000, origin.start)), Refusal);

  EXPECT_EQ(count("SELECT count(*) FROM publishers"), 0);
}

TEST_F(ACollection, KnowsTheHighestNumberAfterARestart) {
  addFrames(1, 1);
  commit();
  Collection next(file);
  next.begin();

  EXPECT_THROW(next.add(frame(1'000'000'000)), Refusal);

  next.commit();
}

TEST_F(ACollection, CountsRefusalsByReason) {
  collection.countRefusal("not JSON", "a");
  collection.countRefusal("not JSON", "b");

  EXPECT_EQ(count("SELECT count FROM refused WHERE reason = 'not JSON' AND topic = 'b'"), 2);
}

TEST_F(ACollection, KeepsEachStateOfACameraOnce) {
  collection.add(status("running", 0, origin.start));
  collection.add(status("running", 5, origin.start));

  EXPECT_EQ(count("SELECT count(*) FROM states WHERE state = 'Receiving'"), 1);
}

using AnAudit = ACollection;

TEST_F(AnAudit, OfFramesWithoutGapsFindsNothing) {
  addFrames(1, 10);

  const CameraAccount result = account();

  EXPECT_EQ(result.numbered, 10U);
  EXPECT_EQ(result.stored, 10U);
  EXPECT_EQ(result.missing, 0U);
}

TEST_F(AnAudit, FindsTheFramesThatAreMissing) {
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

TEST_F(AnAudit, CountsWhatTheDeviceDroppedApart) {
  addFrames(1, 2);
  addFrames(9, 9);
  collection.add(CollectedNote{origin, {1, origin.start, 3, 4}});
  collection.add(CollectedNote{origin, {1, origin.start, 6, 8}});

  const CameraAccount result = account();

  EXPECT_EQ(result.dropped, 5U);
  EXPECT_EQ(result.missing, 1U);
  EXPECT_EQ(result.numbered, result.stored + result.dropped + result.missing);
}

TEST_F(AnAudit, DoesNotCountADroppedFrameThatIsStored) {
  addFrames(1, 3);
  collection.add(CollectedNote{origin, {1, origin.start, 2, 4}});

  const CameraAccount result = account();

  EXPECT_EQ(result.stored, 3U);
  EXPECT_EQ(result.dropped, 1U);
  EXPECT_EQ(result.missing, 0U);
}

TEST_F(AnAudit, MissesTheEndOfAStartThatHasEnded) {
  addFrames(1, 2);
  collection.add(status("running", 5, origin.start));
  collection.add(status("running", 0, "ffffffffffffffff"));

  EXPECT_EQ(account().missing, 3U);
}

TEST_F(AnAudit, WaitsForTheEndOfAStartThatRuns) {
  addFrames(1, 2);
  collection.add(status("running", 5, origin.start));

  const CameraAccount result = account();

  EXPECT_EQ(result.waiting, 3U);
  EXPECT_EQ(result.missing, 0U);
}

TEST_F(AnAudit, CountsFramesBeforeTheFirstUnlessAskedNotTo) {
  addFrames(4, 5);

  EXPECT_EQ(account().missing, 3U);
  AuditOptions options;
  options.fromFirstStored = true;
  const Database database(file, file, Database::Access::Read);
  EXPECT_EQ(audit(database, options).at(0).missing, 0U);
}

TEST_F(AnAudit, OfAnotherDatabaseFails) {
  commit();
  const tarn::test::TemporaryFolder other;
  const Database database(other.path() / "empty.db", "empty.db", Database::Access::Create);

  EXPECT_THROW(audit(database, {}), Failure);
}

}  // namespace
