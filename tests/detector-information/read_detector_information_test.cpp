// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "support/allocation_failure.h"
#include "support/detector_builder.h"
#include "support/parsing_without_memory.h"
#include "support/system_log.h"
#include "support/wire_bytes.h"

#include <gmock/gmock.h>
#include <malloc.h>
#include <tarnvod/detector_information.h>
#include <tarnvod/read_detector_information.h>

#include <cstdlib>
#include <cstring>
#include <limits>
#include <new>
#include <optional>

namespace {

/** What the service answers next, and what it was asked. */
struct Service {
  int result = 0;
  std::string information;
  std::optional<std::size_t> length;
  bool givesNull = false;
  video_object_detection_subscriber_st* askedFor = nullptr;
  bool gaveErrorParameter = false;
};
Service service;

}  // namespace

/** Takes the place of the platform's function of this name. */
extern "C" int video_object_detection_subscriber_get_information(video_object_detection_subscriber_st* subscriber,
                                                                 uint8_t** information, size_t* length, char** error) {
  service.askedFor = subscriber;
  service.gaveErrorParameter = error != nullptr;
  if (service.result != 0) {
    *information = reinterpret_cast<uint8_t*>(1);  // nothing that could be freed
    return service.result;
  }
  if (service.givesNull) {
    *information = nullptr;
  } else {
    *information = static_cast<uint8_t*>(std::malloc(service.information.size() + 1));
    std::memcpy(*information, service.information.data(), service.information.size());
  }
  *length = service.length.value_or(service.information.size());
  return 0;
}

namespace tarn::VOD {
namespace {

using test::AllocationFailure;
using test::LogLine;
using test::messagesSurviveFailedAllocations;
using test::noSurvival;
using testing::ElementsAre;
using testing::IsEmpty;

/** A service with some classes; what it gives out is released by the reader, or a leak checker complains. */
class AService : public testing::Test {
 protected:
  AService() {
    test::addClass(message_, 7, "a class with a name that is too long for a string without memory of its own");
    test::addClass(message_, 8, "another class");
    service = Service();
    service.information = message_.SerializeAsString();
  }

  static ::VOD::DetectorInformation read() { return readDetectorInformation(subscriber()); }
  static video_object_detection_subscriber_st* subscriber() {
    static char object;
    return reinterpret_cast<video_object_detection_subscriber_st*>(&object);
  }

  ::VOD::DetectorInformation message_;
  test::SystemLog log_;
};

TEST_F(AService, IsAskedForItsInformationWithoutAnErrorParameter) {
  EXPECT_EQ(read().SerializeAsString(), service.information);
  EXPECT_EQ(service.askedFor, subscriber());
  EXPECT_FALSE(service.gaveErrorParameter);
  EXPECT_THAT(log_.lines(), IsEmpty());
}

TEST_F(AService, ThatFailsGivesAnEmptyMessageAndAWarning) {
  for (const int result : {1, -1}) {
    service.result = result;
    const test::SystemLog log;
    EXPECT_EQ(read().SerializeAsString(), "");
    EXPECT_THAT(log.lines(), ElementsAre(LogLine{LOG_WARNING, "Couldn't read detector information\n"}));
  }
}

TEST_F(AService, ThatFailsGivesCameraOneAndNothingElse) {
  service.result = 1;
  EXPECT_EQ(DetectorInformation(read()), DetectorInformation(::VOD::DetectorInformation()));
}

TEST_F(AService, ThatSendsNothingGivesAnEmptyMessageAndNoWarning) {
  service.information = "";
  EXPECT_EQ(read().SerializeAsString(), "");
  EXPECT_THAT(log_.lines(), IsEmpty());
}

TEST_F(AService, ThatSendsGarbageGivesAnEmptyMessageAndNoWarning) {
  service.information = "\xFF\xFF garbage";
  EXPECT_EQ(read().SerializeAsString(), "");
  EXPECT_THAT(log_.lines(), IsEmpty());
}

TEST_F(AService, ThatSendsACutOffMessageGivesWhatStandsBeforeTheCut) {
  service.information = test::field("0A", test::wire("08 07")) + test::wire("0A 20 08");
  ASSERT_GE(read().object_classes_size(), 1);
  EXPECT_EQ(read().object_classes(0).id(), 7U);
}

TEST_F(AService, ThatSendsAnInvalidNameGivesWhatStandsBeforeIt) {
  service.information = test::field("0A", test::wire("08 07")) + test::field("0A", test::wire("12 01 FF"));
  ASSERT_GE(read().object_classes_size(), 1);
  EXPECT_EQ(read().object_classes(0).id(), 7U);
}

TEST_F(AService, ThatReturnsALengthBeyondAnyMessageGivesAnEmptyMessage) {
  constexpr auto longest = static_cast<std::size_t>(std::numeric_limits<int>::max());
  for (const auto length : {longest + 1, longest + 2, std::numeric_limits<std::size_t>::max()}) {
    service.length = length;
    EXPECT_EQ(read().SerializeAsString(), "") << length;
  }
}

TEST_F(AService, ThatGivesALengthButNoBytesGivesAnEmptyMessage) {
  service.givesNull = true;
  EXPECT_EQ(read().SerializeAsString(), "");
  EXPECT_THAT(log_.lines(), IsEmpty());
}

TEST_F(AService, HasItsBufferFreed) {
  constexpr int times = 100;
  service.information.append(10'000, '\0');  // no message from there on
  static_cast<void>(read());                 // what is allocated once and kept
  const std::size_t before = mallinfo2().uordblks;
  for (int i = 0; i < times; ++i) {
    static_cast<void>(read());
  }
  EXPECT_LT(mallinfo2().uordblks, before + times / 2 * service.information.size());
}

TEST_F(AService, IsReadCleanlyWhicheverAllocationFails) {
  if (!messagesSurviveFailedAllocations()) {
    GTEST_SKIP() << noSurvival;
  }
  std::size_t number = 0;
  bool failed = true;
  while (failed) {
    bool threw = false;
    {
      const AllocationFailure failure(++number);
      try {
        read();
      } catch (const std::bad_alloc&) {
        threw = true;
      }
      failed = failure.happened();
    }
    EXPECT_EQ(threw, failed) << "allocation " << number;
  }
  EXPECT_GT(number, 2U);
}

TEST_F(AService, IsConvertedCleanlyWhicheverAllocationFails) {
  const auto message = read();
  std::size_t number = 0;
  bool failed = true;
  while (failed) {
    bool threw = false;
    {
      const AllocationFailure failure(++number);
      try {
        const DetectorInformation information(message);
      } catch (const std::bad_alloc&) {
        threw = true;
      }
      failed = failure.happened();
    }
    EXPECT_EQ(threw, failed) << "allocation " << number;
  }
  EXPECT_GT(number, 5U);
}

}  // namespace
}  // namespace tarn::VOD
