# SPDX-FileCopyrightText: 2026 The tarnvod authors
# SPDX-License-Identifier: MIT

# The callable of the record is called in its place instead of a copy.
s/^  DetectionCallback callback;/  const DetectionCallback* callback = nullptr;/
s/^  return \{camera, subscription\.request\.callback,/  return {camera, \&subscription.request.callback,/
s/^  receiver\.callback\(/  (*receiver.callback)(/
