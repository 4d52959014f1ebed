// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

// A library in four versions, for the tests of scripts/compare-abi.

struct Box {
#ifdef WITH_A_WIDER_MEMBER
  double width;
#else
  float width;
#endif
  float height;
};

float area(const Box& box) {
  return static_cast<float>(box.width) * box.height;
}

#ifndef WITHOUT_A_FUNCTION
float perimeter(const Box& box) {
  return 2 * (static_cast<float>(box.width) + box.height);
}
#endif

#ifdef WITH_A_NEW_FUNCTION
bool isSquare(const Box& box) {
  return !(box.width < box.height) && !(box.height < box.width);
}
#endif
