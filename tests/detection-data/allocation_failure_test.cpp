// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

// The n-th allocation of a conversion fails, for each n: it throws, and nothing leaks.

#include "detection-data/scene_conversion.h"
#include "support/at_each_allocation.h"

#include <tarnvod/video_object_detection.pb.h>

#include <map>
#include <memory>
#include <string>

namespace tarn::VOD {
namespace {

constexpr auto longName = "a name that a string does not hold without memory";

SceneNames namesOfOne() {
  SceneNames names;
  names.classes = std::make_shared<const ClassNames>(std::map<std::int32_t, std::string>{{1, longName}});
  names.attributes = std::make_shared<const AttributeNames>(
      std::map<std::uint32_t, std::string>{{1, longName}},
      std::map<AttributeClassId, AttributeValueName>{{{1, 1}, {longName, nullptr}}});
  return names;
}

::VOD::Scene sceneWithAllThereIs() {
  ::VOD::Scene scene;
  for (int number = 0; number < 2; ++number) {
    ::VOD::Detection& detection = *scene.add_detections();
    detection.set_class_id(1);
    ::VOD::Attribute& attribute = *detection.add_attributes();
    attribute.set_type(1);
    attribute.set_class_(1);
    ::VOD::Classification& classification = *detection.add_classifications();
    classification.set_class_(1);
    classification.set_score(3);
    ::VOD::Event& event = *scene.add_events();
    event.set_action(::VOD::EVENT_CONNECT);
    event.add_object_ids(4);
  }
  return scene;
}

TEST(MemoryRunningOut, InAConversionOfASceneLeavesItAsAnExceptionAndTheNextOneWorks) {
  const SceneNames names = namesOfOne();
  const ::VOD::Scene scene = sceneWithAllThereIs();
  const auto convert = [&] { return convertScene(scene, names, [](std::uint32_t) {}); };
  const auto expected = convert();
  test::atEachAllocation([&] { convert(); }, [&] { EXPECT_EQ(*convert(), *expected); });
}

}  // namespace
}  // namespace tarn::VOD
