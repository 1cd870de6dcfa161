// f32x8 as two f32x4, for processors without an eight-lane unit.
#pragma once

namespace mvk {

struct f32x8 {
  f32x4 lo, hi;

  f32x8() = default;
  f32x8(f32x4 a, f32x4 b) : lo(a), hi(b) {}
  f32x8(float x) : lo(x), hi(x) {}
};

template <>
inline f32x8 load<f32x8>(const float *p) {
  return {load<f32x4>(p), load<f32x4>(p + 4)};
}
inline void store(float *p, f32x8 v) {
  store(p, v.lo);
  store(p + 4, v.hi);
}

inline f32x8 operator+(f32x8 a, f32x8 b) { return {a.lo + b.lo, a.hi + b.hi}; }
inline f32x8 operator-(f32x8 a, f32x8 b) { return {a.lo - b.lo, a.hi - b.hi}; }
inline f32x8 operator*(f32x8 a, f32x8 b) { return {a.lo * b.lo, a.hi * b.hi}; }
inline f32x8 operator/(f32x8 a, f32x8 b) { return {a.lo / b.lo, a.hi / b.hi}; }

inline f32x8 fma(f32x8 a, f32x8 b, f32x8 c) {
  return {fma(a.lo, b.lo, c.lo), fma(a.hi, b.hi, c.hi)};
}
inline f32x8 fms(f32x8 a, f32x8 b, f32x8 c) {
  return {fms(a.lo, b.lo, c.lo), fms(a.hi, b.hi, c.hi)};
}
inline f32x8 fnms(f32x8 a, f32x8 b, f32x8 c) {
  return {fnms(a.lo, b.lo, c.lo), fnms(a.hi, b.hi, c.hi)};
}

inline f32x8 maxnum(f32x8 a, f32x8 b) { return {maxnum(a.lo, b.lo), maxnum(a.hi, b.hi)}; }
inline f32x8 minnum(f32x8 a, f32x8 b) { return {minnum(a.lo, b.lo), minnum(a.hi, b.hi)}; }
inline f32x8 max_propagating(f32x8 a, f32x8 b) {
  return {max_propagating(a.lo, b.lo), max_propagating(a.hi, b.hi)};
}
inline f32x8 min_propagating(f32x8 a, f32x8 b) {
  return {min_propagating(a.lo, b.lo), min_propagating(a.hi, b.hi)};
}

inline f32x8 reverse(f32x8 v) { return {reverse(v.hi), reverse(v.lo)}; }

inline halves<f32x8> interleave(f32x8 a, f32x8 b) {
  const auto lo = interleave(a.lo, b.lo), hi = interleave(a.hi, b.hi);
  return {{lo.lo, lo.hi}, {hi.lo, hi.hi}};
}
inline halves<f32x8> deinterleave(f32x8 a, f32x8 b) {
  const auto lo = deinterleave(a.lo, a.hi), hi = deinterleave(b.lo, b.hi);
  return {{lo.lo, hi.lo}, {lo.hi, hi.hi}};
}

inline halves<f32x8> interleave_pairs(f32x8 a, f32x8 b) {
  const auto lo = interleave_pairs(a.lo, b.lo), hi = interleave_pairs(a.hi, b.hi);
  return {{lo.lo, hi.lo}, {lo.hi, hi.hi}};
}

inline halves<f32x8> split_pairs(f32x8 a, f32x8 b) { return deinterleave(a, b); }
inline halves<f32x8> join_pairs(f32x8 even, f32x8 odd) { return interleave(even, odd); }
template <>
inline halves<f32x8> load_split_pairs<f32x8>(const float *p) {
  const auto lo = load_split_pairs<f32x4>(p), hi = load_split_pairs<f32x4>(p + 8);
  return {{lo.lo, hi.lo}, {lo.hi, hi.hi}};
}
inline void store_interleaved(float *p, f32x8 even, f32x8 odd) {
  store_interleaved(p, even.lo, odd.lo);
  store_interleaved(p + 8, even.hi, odd.hi);
}
inline f32x8 natural_order(f32x8 a) { return a; }

inline f32x8 operator-(f32x8 a) { return {-a.lo, -a.hi}; }
inline f32x8 abs(f32x8 a) { return {abs(a.lo), abs(a.hi)}; }
inline f32x8 greater_of(f32x8 a, f32x8 b) {
  return {greater_of(a.lo, b.lo), greater_of(a.hi, b.hi)};
}
inline f32x8 lesser_of(f32x8 a, f32x8 b) { return {lesser_of(a.lo, b.lo), lesser_of(a.hi, b.hi)}; }
inline f32x8 where_greater(f32x8 a, f32x8 b, f32x8 x, f32x8 y) {
  return {where_greater(a.lo, b.lo, x.lo, y.lo), where_greater(a.hi, b.hi, x.hi, y.hi)};
}
inline f32x8 greater_magnitude(f32x8 a, f32x8 b) {
  return {greater_magnitude(a.lo, b.lo), greater_magnitude(a.hi, b.hi)};
}
inline f32x8 alternate(f32x8 even, f32x8 odd) {
  return {alternate(even.lo, odd.lo), alternate(even.hi, odd.hi)};
}
inline bool any_greater(f32x8 a, f32x8 b) {
  return any_greater(a.lo, b.lo) || any_greater(a.hi, b.hi);
}

inline f32x8 with_lane0(f32x8 a, f32x8 b) { return {with_lane0(a.lo, b.lo), b.hi}; }
inline f32x8 with_lanes04(f32x8 a, f32x8 b) {
  return {with_lane0(a.lo, b.lo), with_lane0(a.hi, b.hi)};
}

inline f32x4 lower(f32x8 a) { return a.lo; }
inline f32x4 upper(f32x8 a) { return a.hi; }
inline f32x8 both(f32x4 lo, f32x4 hi) { return {lo, hi}; }
inline f32x8 swap_halves(f32x8 a) { return {a.hi, a.lo}; }

inline void transpose_fours(f32x8 (&r)[4]) {
  const auto fours = [&r](f32x4 f32x8::*half) {
    f32x4 q[4] = {r[0].*half, r[1].*half, r[2].*half, r[3].*half};
    transpose(q);
    for (int i = 0; i < 4; ++i) r[i].*half = q[i];
  };
  fours(&f32x8::lo);
  fours(&f32x8::hi);
}

inline void transpose(f32x8 (&r)[8]) {
  const auto quarter = [&r](int row, f32x4 f32x8::*half) {
    f32x4 q[4] = {r[row].*half, r[row + 1].*half, r[row + 2].*half, r[row + 3].*half};
    transpose(q);
    for (int i = 0; i < 4; ++i) r[row + i].*half = q[i];
  };
  quarter(0, &f32x8::lo);
  quarter(0, &f32x8::hi);
  quarter(4, &f32x8::lo);
  quarter(4, &f32x8::hi);
  for (int i = 0; i < 4; ++i) {
    const f32x4 upper_right = r[i].hi;
    r[i].hi = r[4 + i].lo;
    r[4 + i].lo = upper_right;
  }
}

}  // namespace mvk
