// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "client.h"

#include <sstream>

namespace vod::host {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class TheJournal : public HostTest {};

TEST_F(TheJournal, KeepsEveryCallWithItsArguments) {
  {
    Client client(1);
    client.receiveEmptyHits().useChannelConfiguration().subscribe();
    VOD::ChannelConfiguration configuration;
    configuration.mutable_roi()->set_coord_1(0.25F);
    configuration.mutable_roi()->set_coord_3(1);
    const std::string bytes = configuration.SerializeAsString();
    video_object_detection_set_channel_configuration(0, reinterpret_cast<const std::uint8_t*>(bytes.data()),
                                                     bytes.size(), nullptr);
    constexpr std::uint8_t noRegion[] = {0x18, 0x0f};
    video_object_detection_set_channel_configuration(0, noRegion, sizeof noRegion, nullptr);
    std::uint8_t* information = nullptr;
    std::size_t length = 0;
    video_object_detection_subscriber_get_information(client.handle(), &information, &length, nullptr);
    std::free(information);
    client.unsubscribe();
  }
  std::uint32_t count = 0;
  int number = 0;
  video_object_detection_subscriber_get_nbr_channels(&count);
  video_object_detection_subscriber_get_nbr_channels_simultaneously(&count);
  video_object_detection_subscriber_get_version(&number, &number);
  video_object_detection_subscriber_service_is_enabled();
  EXPECT_THAT(journal(), ElementsAre("create(channel=1)", "set_receive_empty_hits(#1, true)",
                                     "use_channel_configuration(#1, true)", "set_get_detection_callback(#1)",
                                     "set_teardown_callback(#1)", "subscribe(#1)",
                                     "set_channel_configuration(channel=0, roi=[0.25, 0, 1, 0])",
                                     "set_channel_configuration(channel=0, bytes=180f)", "get_information(#1)",
                                     "unsubscribe(#1)", "delete(#1)", "get_nbr_channels()",
                                     "get_nbr_channels_simultaneously()", "get_version()", "service_is_enabled()"));
}

TEST_F(TheJournal, KeepsResultsAndUserData) {
  plan(Fault(Function::Delete).failsWith(6));
  const void* userData = nullptr;
  {
    const Client client(0);
    userData = &client;
  }
  const std::vector<Call> made = calls();
  ASSERT_EQ(made.size(), 2U);
  EXPECT_EQ(made[0].function, Function::Create);
  EXPECT_EQ(made[0].subscriber, 1);
  EXPECT_EQ(made[0].channel, 0);
  EXPECT_EQ(made[0].userData, userData);
  EXPECT_EQ(made[0].result, 0);
  EXPECT_EQ(made[1].subscriber, 1);
  EXPECT_EQ(made[1].result, 6);
}

TEST_F(TheJournal, KeepsNoScenes) {
  Client client(0);
  client.subscribe();
  clearJournal();
  channel(0).pushScene(sceneWith({{0.5F, 0.5F}}));
  drain();
  EXPECT_THAT(journal(), IsEmpty());
}

TEST_F(TheJournal, PrintsACallAsItsText) {
  const Client client(0);
  std::ostringstream out;
  out << calls().front() << ' ' << Function::GetNbrChannelsSimultaneously;
  EXPECT_EQ(out.str(), "create(channel=0) get_nbr_channels_simultaneously");
}

TEST_F(TheJournal, KeepsNothingWhenRecordingIsOff) {
  recordCalls(false);
  { const Client client(0); }
  EXPECT_THAT(journal(), IsEmpty());
  recordCalls(true);
  { const Client client(0); }
  EXPECT_THAT(journal(), ElementsAre("create(channel=0)", "delete(#2)"));
}

TEST_F(TheJournal, StaysClearedWhenACallEndsThatBeganBefore) {
  const Gate gate;
  plan(Fault(Function::Create).waitsAt(gate));
  std::thread caller([] { const Client client(0); });
  gate.waitUntilReached();
  clearJournal();
  gate.open();
  caller.join();
  EXPECT_THAT(journal(), ElementsAre("delete(#1)"));
}

TEST_F(TheJournal, WaitsForCallsThatReturn) {
  std::thread caller([] {
    const Client first(0);
    const Client second(0);
  });
  waitForReturned(Function::Delete, 2);
  caller.join();
}

TEST_F(TheJournal, WaitsForCallsThatBegin) {
  const Gate gate;
  plan(Fault(Function::Create).waitsAt(gate));
  std::thread caller([] { const Client client(0); });
  waitForCalls([](const std::vector<Call>& calls) { return !calls.empty() && !calls.back().result; });
  gate.open();
  caller.join();
}

}  // namespace
}  // namespace vod::host
