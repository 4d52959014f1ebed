# SPDX-FileCopyrightText: 2026 The tarnvod authors
# SPDX-License-Identifier: MIT

# The end of a camera does not wait for its callbacks.
s/^      ended_\.wait\(lock, .*$/      static_cast<void>(own);/
