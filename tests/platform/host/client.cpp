// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "client.h"

#include "support/scene_builder.h"

namespace vod::host {

using Lock = tarn::VOD::WaitingLock;

Client::Client(int channel, Reactions reactions)
    : reactions_(std::move(reactions)),
      createResult_(video_object_detection_subscriber_create(&handle_, this, channel)) {}

Client::~Client() {
  if (handle_ != nullptr) {
    remove();
  }
  waitFor([this]() TARNVOD_REQUIRES(mutex_) { return running_ == 0; });
}

Client& Client::receiveEmptyHits() {
  EXPECT_EQ(video_object_detection_subscriber_set_receive_empty_hits(handle_, true), 0);
  return *this;
}

Client& Client::useChannelConfiguration() {
  EXPECT_EQ(video_object_detection_subscriber_use_channel_configuration(handle_, true), 0);
  return *this;
}

Client& Client::subscribe() {
  EXPECT_EQ(trySubscribe(), 0);
  return *this;
}

int Client::trySubscribe() {
  EXPECT_EQ(video_object_detection_subscriber_set_get_detection_callback(handle_, &onDetection), 0);
  EXPECT_EQ(video_object_detection_subscriber_set_teardown_callback(handle_, &onTeardown), 0);
  return video_object_detection_subscriber_subscribe(handle_);
}

int Client::unsubscribe() {
  return video_object_detection_subscriber_unsubscribe(handle_);
}

int Client::remove() {
  return video_object_detection_subscriber_delete(&handle_);
}

std::vector<std::string> Client::scenes() const {
  std::vector<std::string> scenes;
  for (const Received& received : received()) {
    scenes.push_back(received.bytes);
  }
  return scenes;
}

std::vector<Received> Client::received() const {
  const Lock lock(mutex_);
  return received_;
}

int Client::teardowns() const {
  return static_cast<int>(teardownThreads().size());
}

std::vector<std::thread::id> Client::teardownThreads() const {
  const Lock lock(mutex_);
  return teardownThreads_;
}

bool Client::hasOverlapped() const {
  const Lock lock(mutex_);
  return hasOverlapped_;
}

void Client::waitForScenes(std::size_t count) {
  waitFor([&]() TARNVOD_REQUIRES(mutex_) { return received_.size() >= count; });
}

void Client::waitForTeardowns(int count) {
  waitFor([&]() TARNVOD_REQUIRES(mutex_) { return teardownThreads_.size() >= static_cast<std::size_t>(count); });
}

void Client::waitFor(const std::function<bool()>& condition) {
  Lock lock(mutex_);
  EXPECT_TRUE(changed_.wait_for(lock.forWaiting(), waitTimeout, condition));
}

/** One callback, from its beginning to its end, also when a reaction throws. */
class Client::Running {
 public:
  explicit Running(Client& client) : client_(client) {
    const Lock lock(client_.mutex_);
    client_.hasOverlapped_ |= client_.running_ > 0;
    ++client_.running_;
  }
  ~Running() {
    const Lock lock(client_.mutex_);
    --client_.running_;
    client_.changed_.notify_all();
  }
  Running(const Running&) = delete;
  Running& operator=(const Running&) = delete;

 private:
  Client& client_;
};

void Client::onDetection(const std::uint8_t* buffer, std::int32_t length, void* userData) {
  Client& client = *static_cast<Client*>(userData);
  const Running running(client);
  {
    const Lock lock(client.mutex_);
    Received received{{}, length, buffer == nullptr, std::this_thread::get_id()};
    if (buffer != nullptr && length > 0) {
      received.bytes.assign(buffer, buffer + length);
    }
    client.received_.push_back(std::move(received));
    client.changed_.notify_all();
  }
  if (client.reactions_.onScene) {
    client.reactions_.onScene(client);
  }
}

void Client::onTeardown(void* userData) {
  Client& client = *static_cast<Client*>(userData);
  const Running running(client);
  {
    const Lock lock(client.mutex_);
    client.teardownThreads_.push_back(std::this_thread::get_id());
    client.changed_.notify_all();
  }
  if (client.reactions_.onTeardown) {
    client.reactions_.onTeardown(client);
  }
}

std::string sceneWith(const std::vector<Centre>& centres, std::uint64_t timestamp) {
  VOD::Scene scene;
  scene.set_timestamp(timestamp);
  for (const Centre& centre : centres) {
    constexpr float half = 0.05F;
    tarn::test::setBox(*scene.add_detections(), centre.x - half, centre.y - half, centre.x + half, centre.y + half);
  }
  return scene.SerializeAsString();
}

std::string emptyScene(std::uint64_t timestamp) {
  return sceneWith({}, timestamp);
}

std::string largeScene(std::size_t detections) {
  std::string scene = sceneWith(std::vector<Centre>(detections, {0.5F, 0.5F}));
  EXPECT_GT(scene.size(), 4096U);
  return scene;
}

std::string errorsOf(const std::function<void()>& code) {
  testing::internal::CaptureStderr();
  code();
  return testing::internal::GetCapturedStderr();
}

}  // namespace vod::host
