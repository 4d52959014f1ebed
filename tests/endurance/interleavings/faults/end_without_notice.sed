# SPDX-FileCopyrightText: 2026 The tarnvod authors
# SPDX-License-Identifier: MIT

# A callback that ends does not wake up who waits for it.
/^      ended_\.notify_all\(\);$/d
