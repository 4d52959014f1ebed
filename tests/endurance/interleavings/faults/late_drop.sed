# SPDX-FileCopyrightText: 2026 The tarnvod authors
# SPDX-License-Identifier: MIT

# A drop of an earlier subscription is taken for one of the present.
s/registry->findActive\(userData\)/registry->active.find(*static_cast<const std::int32_t*>(userData))/
