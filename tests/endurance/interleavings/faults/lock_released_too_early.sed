# SPDX-FileCopyrightText: 2026 The tarnvod authors
# SPDX-License-Identifier: MIT

# The lock is released while a dropped record is in neither map.
s/^  const HandlerLock lock/  HandlerLock lock/
s/^  (deleteSubscriber\(record\.mapped\(\)\);)/  lock.unlockDuring([\&] { \1 });/
