// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "reference/detector_reference.h"
#include "support/detector_builder.h"

#include <gtest/gtest.h>
#include <tarnvod/detector_information.h>
#include <tarnvod/video_object_detection.pb.h>

#include <optional>
#include <random>
#include <string>

namespace tarn::VOD {
namespace {

/** Messages with so few ids and names that most of them occur several times. */
class SmallMessages {
 public:
  ::VOD::DetectorInformation next() {
    ::VOD::DetectorInformation message;
    for (int types = below(8); types > 0; --types) {
      test::addAttributeType(message, id(), name(), {});
      auto& type = *message.mutable_attribute_types(message.attribute_types_size() - 1);
      for (int values = below(3); values > 0; --values) {
        type.add_attribute_classes()->set_name(name());
      }
    }
    for (int classes = below(5); classes > 0; --classes) {
      auto& objectClass = test::addClass(message, id(), name());
      for (int references = below(6); references > 0; --references) {
        objectClass.add_attribute_type_ids(id());
      }
    }
    return message;
  }

 private:
  int below(std::uint32_t bound) { return static_cast<int>(random_() % bound); }
  std::uint32_t id() { return random_() % 4; }
  std::string name() { return std::string(1, "aAbBcZ"[below(6)]); }

  std::mt19937 random_;
};

TEST(AnyMessage, IsConvertedAsByAPlainScan) {
  SmallMessages messages;
  for (int i = 0; i < 3000; ++i) {
    const ::VOD::DetectorInformation message = messages.next();
    ASSERT_EQ(test::differenceFrom(message, DetectorInformation(message)), std::nullopt) << "message " << i;
  }
}

}  // namespace
}  // namespace tarn::VOD
