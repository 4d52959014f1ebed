// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "client.h"
#include "support/scene_builder.h"

namespace vod::host {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

int configure(int channel, const std::string& bytes, char** error = nullptr) {
  return video_object_detection_set_channel_configuration(channel, reinterpret_cast<const std::uint8_t*>(bytes.data()),
                                                          bytes.size(), error);
}

std::string regionOf(float left, float top, float right, float bottom) {
  VOD::ChannelConfiguration configuration;
  VOD::BoundingBox& box = *configuration.mutable_roi();
  box.set_coord_1(left);
  box.set_coord_2(top);
  box.set_coord_3(right);
  box.set_coord_4(bottom);
  return configuration.SerializeAsString();
}

constexpr Centre inside{0.25F, 0.25F};
constexpr Centre outside{0.75F, 0.25F};

class ARegionOfInterest : public HostTest {
 protected:
  ARegionOfInterest() { EXPECT_EQ(configure(0, regionOf(0, 0, 0.5F, 0.5F)), 0); }
};

TEST_F(ARegionOfInterest, DropsDetectionsWithTheirCentreOutside) {
  Client client(0);
  client.useChannelConfiguration().subscribe();
  channel(0).pushScene(sceneWith({outside, inside, outside}, 9));
  drain();
  EXPECT_THAT(client.scenes(), ElementsAre(sceneWith({inside}, 9)));
}

TEST_F(ARegionOfInterest, DropsDetectionsOfWhichOnlyACornerIsInside) {
  VOD::Scene scene;
  ASSERT_TRUE(scene.ParseFromString(sceneWith({inside}, 9)));
  tarn::test::setBox(*scene.add_detections(), 0.4F, 0.1F, 0.9F, 0.2F);
  tarn::test::setBox(*scene.add_detections(), 0.1F, 0.4F, 0.2F, 0.9F);
  Client client(0);
  client.useChannelConfiguration().subscribe();
  channel(0).pushScene(scene.SerializeAsString());
  drain();
  EXPECT_THAT(client.scenes(), ElementsAre(sceneWith({inside}, 9)));
}

TEST_F(ARegionOfInterest, LetsDetectionsPassWithTheirCentreOnItsEdge) {
  VOD::Scene scene;
  scene.add_detections()->set_coord_3(1);
  const std::string bytes = scene.SerializeAsString();
  Client client(0);
  client.useChannelConfiguration().subscribe();
  channel(0).pushScene(bytes);
  drain();
  EXPECT_THAT(client.scenes(), ElementsAre(bytes));
}

TEST_F(ARegionOfInterest, AppliesToThoseWhoUseItOnly) {
  const std::string scene = sceneWith({inside, outside});
  Client client(0);
  Client other(1);
  client.subscribe();
  other.useChannelConfiguration().subscribe();
  channel(0).pushScene(scene);
  channel(1).pushScene(scene);
  drain();
  EXPECT_THAT(client.scenes(), ElementsAre(scene));
  EXPECT_THAT(other.scenes(), ElementsAre(scene));
}

TEST_F(ARegionOfInterest, KeepsTheRestByteForByte) {
  const std::string unknown = "\x7a\x02hi";                          // field 15
  const std::string events = "\x1a\x04\x08\x01\x10\x07";             // connects object 7
  const std::string kept = std::string("\x12\x83\x00\x52\x01x", 6);  // an unknown field inside, an overlong length
  Client client(0);
  client.useChannelConfiguration().subscribe();
  channel(0).pushScene(unknown + sceneWith({outside}) + events + kept);
  channel(0).pushScene(unknown + events + kept);
  drain();
  EXPECT_THAT(client.scenes(), ElementsAre(unknown + events + kept, unknown + events + kept));
}

TEST_F(ARegionOfInterest, MakesASceneEmptyWhoseDetectionsAreAllOutside) {
  Client client(0);
  Client all(0);
  client.useChannelConfiguration().subscribe();
  all.useChannelConfiguration().receiveEmptyHits().subscribe();
  channel(0).pushScene(sceneWith({outside}, 9));
  drain();
  EXPECT_THAT(client.scenes(), IsEmpty());
  EXPECT_THAT(all.scenes(), ElementsAre(emptyScene(9)));
}

TEST_F(ARegionOfInterest, PassesInvalidScenesOn) {
  const std::string broken = sceneWith({outside}) + "\x12\x02\x0d\x00";
  Client client(0);
  client.useChannelConfiguration().subscribe();
  channel(0).pushScene(broken);
  drain();
  EXPECT_THAT(client.scenes(), ElementsAre(broken));
}

TEST_F(ARegionOfInterest, EndsWithAConfigurationThatHasNone) {
  EXPECT_EQ(configure(0, ""), 0);
  Client client(0);
  client.useChannelConfiguration().subscribe();
  channel(0).pushScene(sceneWith({outside}));
  drain();
  EXPECT_THAT(client.scenes(), ElementsAre(sceneWith({outside})));
}

class AChannelConfiguration : public HostTest {};

TEST_F(AChannelConfiguration, ThatDoesNotParseIsRefusedWithAText) {
  char* error = nullptr;
  EXPECT_NE(configure(0, "\x0a\x05", &error), 0);
  EXPECT_STREQ(error, "not a channel configuration");
  std::free(error);
  EXPECT_NE(configure(0, "\x0a\x05"), 0);
}

TEST_F(AChannelConfiguration, ForAnAbsentChannelIsRefusedWithAText) {
  char* error = nullptr;
  EXPECT_NE(configure(5, "", &error), 0);
  EXPECT_STREQ(error, "no such channel");
  std::free(error);
}

TEST_F(AChannelConfiguration, WithoutBytesIsRefusedWithAText) {
  char* error = nullptr;
  EXPECT_NE(video_object_detection_set_channel_configuration(0, nullptr, 1, &error), 0);
  EXPECT_STREQ(error, "the configuration is null or too long");
  std::free(error);
}

}  // namespace
}  // namespace vod::host
