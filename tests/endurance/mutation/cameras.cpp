// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

// All functions of the headers of `Camera`, in the tests' time and in real time. Not optimised, each is a function of its own; the
// linker takes those of the first object and so replaces the ones of the tests.

#include "camera/steered_time.h"

#include <tarnvod/camera.h>

#include <sstream>

template class tarn::VOD::detail::CameraWatch<tarn::test::SteeredTime>;
template class tarn::VOD::detail::CameraHandle<tarn::test::SteeredTime>;

namespace {

/** What the two classes above do not call. */
[[maybe_unused]] std::string useTheOtherFunctions() {
  const tarn::VOD::Camera camera(1, {}, [](auto) {});
  const tarn::VOD::CameraStatus status = camera.status();
  std::ostringstream printed;
  printed << status << (status == status) << (status != status);
  return printed.str();
}

}  // namespace
