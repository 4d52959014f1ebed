# SPDX-FileCopyrightText: 2026 The tarnvod authors
# SPDX-License-Identifier: MIT

# A frame of a camera that is closing begins a callback.
s/ \|\| found->second->isClosing\)/)/
