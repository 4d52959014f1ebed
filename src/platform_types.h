// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_PLATFORM_TYPES_H
#define TARNVOD_PLATFORM_TYPES_H

#include <cstddef>
#include <tuple>
#include <type_traits>

namespace tarn::VOD {

template <typename Function, std::size_t Index>
struct OutParameter;

template <typename Result, typename... Parameters, std::size_t Index>
struct OutParameter<Result(Parameters...), Index> {
  using Type = std::remove_pointer_t<std::tuple_element_t<Index, std::tuple<Parameters...>>>;
};

/**
 * The type of the object that a platform function fills through its pointer parameter at `Index`, counted from 0:
 * `OutParameterType<decltype(video_object_detection_subscriber_get_version), 0> major{}`. Platforms differ in their
 * integer types, so the library takes them from the platform's own declaration.
 */
template <typename Function, std::size_t Index>
using OutParameterType = typename OutParameter<Function, Index>::Type;

}  // namespace tarn::VOD

#endif
