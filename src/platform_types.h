// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_PLATFORM_TYPES_H
#define TARNVOD_PLATFORM_TYPES_H

#include <cstddef>
#include <tuple>
#include <type_traits>

namespace tarn::VOD {

template <typename Function>
struct ParametersOf;

template <typename Result, typename... Parameters>
struct ParametersOf<Result (*)(Parameters...)> {
  using Type = std::tuple<Parameters...>;
};

/**
 * The type of the value that a platform function stores through one of its pointer parameters. SDKs differ in the integer
 * types they chose, so we take the type from the function itself.
 */
template <auto function, std::size_t parameter>
using PlatformValue =
    std::remove_pointer_t<std::tuple_element_t<parameter, typename ParametersOf<decltype(function)>::Type>>;

}  // namespace tarn::VOD

#endif
