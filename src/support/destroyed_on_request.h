// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_SUPPORT_DESTROYED_ON_REQUEST_H
#define TARNVOD_SUPPORT_DESTROYED_ON_REQUEST_H

namespace tarn::VOD {

/** An object in static storage whose destructor runs only when it is asked for. */
template <typename T>
class DestroyedOnRequest {
 public:
  DestroyedOnRequest() : value_() {}
  ~DestroyedOnRequest() {}  // NOLINT(modernize-use-equals-default): that one would be deleted
  DestroyedOnRequest(const DestroyedOnRequest&) = delete;
  DestroyedOnRequest& operator=(const DestroyedOnRequest&) = delete;

  // NOLINTBEGIN(cppcoreguidelines-pro-type-union-access): only a union leaves the end of its member to others
  T* operator->() { return &value_; }
  void destroy() { value_.~T(); }
  // NOLINTEND(cppcoreguidelines-pro-type-union-access)

 private:
  union {
    T value_;
  };
};

}  // namespace tarn::VOD

#endif
