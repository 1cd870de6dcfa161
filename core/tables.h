// Constant tables from rules, computed by the compiler.
//
//     MVK_EXPORT_TABLE(name, N, mvk::make_table<N>(rule));
//
// defines and exports the C array `name` that a public header declares; inside
// the library it is read as name_data.
#pragma once

#include <cstdint>

namespace mvk {

template <int N>
struct alignas(32) table {
  float v[N];

  constexpr float operator[](int i) const { return v[i]; }
  constexpr operator const float *() const { return v; }
};

// One constant evaluation of rule(0) to rule(N - 1).
template <int N, class Rule>
consteval table<N> make_table(Rule rule) {
  table<N> t{};
  for (int i = 0; i < N; ++i) t.v[i] = rule(i);
  return t;
}

#define MVK_EXPORT_TABLE(name, n, ...)                                \
  extern "C" constinit const mvk::table<n> name##_data = __VA_ARGS__; \
  extern "C" MVK_API const float name[n] __attribute__((alias(#name "_data")))

// ---- Rules ----------------------------------------------------------------

// Nearest integer, ties away from zero.
constexpr double round_half_away(double x) {
  return static_cast<double>(static_cast<std::int64_t>(x < 0 ? x - 0.5 : x + 0.5));
}

// x to six decimals.
constexpr float six_decimals(double x) {
  return static_cast<float>(round_half_away(x * 1e6) / 1e6);
}

// n * 2^-15: a coefficient of a 16-bit fixed-point design.
constexpr float q15(int n) { return static_cast<float>(n) * 0x1p-15f; }

// The multiple of 2^-15 next to x.
constexpr float to_q15(double x) { return q15(static_cast<int>(round_half_away(x * 0x1p15))); }

namespace detail {

inline constexpr double pi = 3.14159265358979323846;

// Taylor polynomials, to within rounding for |x| <= pi / 4.
constexpr double sin_octant(double x) {
  double sum = 0;
  for (int n = 19; n > 1; n -= 2) sum = (1 + sum) * (-x * x / (n * (n - 1)));
  return x + x * sum;
}
constexpr double cos_octant(double x) {
  double sum = 0;
  for (int n = 18; n > 0; n -= 2) sum = (1 + sum) * (-x * x / (n * (n - 1)));
  return 1 + sum;
}

}  // namespace detail

// 2^-x for x from 0 to 1, by the exponential series to within rounding.
constexpr double exp2_negative(double x) {
  constexpr double ln2 = 0.693147180559945309417;
  double sum = 1;
  for (int n = 20; n > 0; --n) sum = 1 - sum * (x * ln2 / n);
  return sum;
}

// sin(pi p / q) and cos(pi p / q), q > 0, |p| and q below 2^60. The angle is
// reduced as a fraction, exactly, to within an eighth of a turn. The result is
// within 2^-51 of the value, relatively, so that narrowing it gives the
// correctly rounded float. Multiples of pi / 2 are exact, and zeros are +0.
constexpr double sin_pi(std::int64_t p, std::int64_t q) {
  p %= 2 * q;                               // one turn
  if (p < 0) return 0 - sin_pi(-p, q);      // odd
  if (p >= q) return 0 - sin_pi(p - q, q);  // half a turn
  if (2 * p > q) p = q - p;                 // mirrored about pi / 2
  const auto angle = [](std::int64_t n, std::int64_t d) {
    return detail::pi * (static_cast<double>(n) / static_cast<double>(d));
  };
  if (4 * p <= q) return detail::sin_octant(angle(p, q));
  return detail::cos_octant(angle(q - 2 * p, 2 * q));
}
constexpr double cos_pi(std::int64_t p, std::int64_t q) {
  p %= 2 * q;
  return sin_pi(2 * p + q, 2 * q);
}

}  // namespace mvk
