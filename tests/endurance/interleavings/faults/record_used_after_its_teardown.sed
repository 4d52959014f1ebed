# SPDX-FileCopyrightText: 2026 The tarnvod authors
# SPDX-License-Identifier: MIT

# The callable of the record is called in its place instead of a copy.
s/^  DetectionCallback callback;/  const DetectionCallback* callback = nullptr;/
s/^          subscription\.request\.callback,/          \&subscription.request.callback,/
s/^  receiver\.callback\(/  (*receiver.callback)(/
