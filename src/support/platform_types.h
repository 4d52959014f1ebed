// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_SUPPORT_PLATFORM_TYPES_H
#define TARNVOD_SUPPORT_PLATFORM_TYPES_H

#include <cstddef>
#include <tuple>
#include <type_traits>

namespace tarn::VOD {

template <typename Function, std::size_t Index>
struct Parameter;

template <typename Result, typename... Parameters, std::size_t Index>
struct Parameter<Result(Parameters...), Index> {
  using Type = std::tuple_element_t<Index, std::tuple<Parameters...>>;
};

/**
 * The type of a platform function's parameter at `Index`, counted from 0. Platforms differ in their integer types, so
 * the library takes them from the platform's own declaration.
 */
template <typename Function, std::size_t Index>
using ParameterType = typename Parameter<Function, Index>::Type;

/**
 * The type of the object that a platform function fills through its pointer parameter at `Index`:
 * `OutParameterType<decltype(video_object_detection_subscriber_get_version), 0> major{}`.
 */
template <typename Function, std::size_t Index>
using OutParameterType = std::remove_pointer_t<ParameterType<Function, Index>>;

}  // namespace tarn::VOD

#endif
