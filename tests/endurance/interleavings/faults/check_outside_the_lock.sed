# SPDX-FileCopyrightText: 2026 The tarnvod authors
# SPDX-License-Identifier: MIT

# What was found in the map is used after the lock was released and taken again.
s/^  const HandlerLock lock/  HandlerLock lock/
s/^  (SubscriptionMap::node_type record = )/  lock.unlockDuring([] {});\n  \1/
