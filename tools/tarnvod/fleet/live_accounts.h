// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_COMMAND_LIVE_ACCOUNTS_H
#define TARNVOD_COMMAND_LIVE_ACCOUNTS_H

#include "fleet/audit.h"
#include "fleet/message_reader.h"
#include "fleet/number_set.h"

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <tuple>
#include <utility>
#include <vector>

namespace tarn::command {

/**
 * The accounts of what a broker passes on, from when one begins to listen. Frames are not kept, so the memory grows with
 * cameras and gaps only; both are bounded. Frames of one number are not compared. Not thread-safe.
 */
class LiveAccounts {
 public:
  explicit LiveAccounts(const AuditOptions& options) : options_(options) {}

  /**
   * Books a message; what is not one of a fleet is counted as refused.
   *
   * @param now  in microseconds, by the wall clock
   * @return the reason of the refusal if it is the first one for it
   */
  std::optional<std::string> take(std::string_view topic, std::string_view payload, std::int64_t now);

  /** One account for each camera, in order of site, device and camera. */
  std::vector<CameraAccount> accounts() const;

  /** Messages that were refused, by reason. */
  const std::map<std::string, std::uint64_t>& refused() const { return refused_; }

 private:
  /** One start of a camera. */
  struct Source {
    std::string start;
    NumberSet received;
    NumberSet accountedFor;      ///< received, or dropped by the device
    std::uint64_t numbered = 0;  ///< as the device has reported
    std::uint64_t late = 0;
    std::uint64_t repeated = 0;
    std::int64_t latestArrival = 0;
    std::optional<std::int64_t> gapSince;
  };
  /** In the order of their first messages. */
  using Starts = std::vector<Source>;
  /** Site, device and camera. */
  using Key = std::tuple<std::string, std::string, int>;

  void add(const CollectedFrame& frame, std::int64_t now);
  void add(const CollectedNote& note, std::int64_t now);
  void add(const CollectedStatus& status, std::int64_t now);
  Source& sourceOf(const Origin& origin, int camera);
  bool isRunning(const Key& camera, const Source& source) const;
  void book(CameraAccount& account, const Source& source, bool isFirst) const;

  const AuditOptions options_;
  std::map<Key, Starts> cameras_;
  std::size_t sources_ = 0;
  /** Of each device: the latest start that it has reported, and whether that runs. */
  std::map<std::pair<std::string, std::string>, std::pair<std::string, bool>> devices_;
  std::map<std::string, std::uint64_t> refused_;
};

}  // namespace tarn::command

#endif
