// Vectors as arrays, and the samples that the tests of the vector types run over.
#pragma once

#include <gtest/gtest.h>

#include <array>
#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <random>
#include <vector>

#include "core/simd.h"

using vectors = testing::Types<float, mvk::f32x4, mvk::f32x8>;
using wide_vectors = testing::Types<mvk::f32x4, mvk::f32x8>;

template <class V>
using array_of = std::array<float, mvk::lanes<V>>;

template <class V>
array_of<V> to_array(V v) {
  array_of<V> a;
  mvk::store(a.data(), v);
  return a;
}

template <class V>
V from_array(const array_of<V> &a) {
  return mvk::load<V>(a.data());
}

// Lanes first, first + step, ...
template <class V>
array_of<V> ramp(int first, int step = 1) {
  array_of<V> a;
  for (std::size_t l = 0; l < a.size(); ++l)
    a[l] = static_cast<float>(first + step * static_cast<int>(l));
  return a;
}

// Bits, with every NaN as one pattern.
inline std::uint32_t bits(float x) {
  return std::isnan(x) ? 0x7fc00000u : std::bit_cast<std::uint32_t>(x);
}

inline std::vector<float> sample_values() {
  using limit = std::numeric_limits<float>;
  std::vector<float> values = {0.0f,
                               -0.0f,
                               1.0f,
                               -1.0f,
                               2.0f,
                               3.0f,
                               10.0f,
                               0.1f,
                               -0.3f,
                               limit::min(),
                               -limit::min(),
                               limit::max(),
                               limit::lowest(),
                               limit::infinity(),
                               -limit::infinity(),
                               limit::denorm_min(),
                               -limit::denorm_min(),
                               limit::quiet_NaN(),
                               -limit::quiet_NaN()};
  std::mt19937 random(1);
  for (int i = 0; i < 21; ++i) {
    const int exponent = static_cast<int>(random() % 60) - 30;
    const float mantissa = static_cast<float>(random()) * 0x1p-31f - 1;
    values.push_back(std::ldexp(mantissa, exponent));
  }
  return values;
}
