// f64x8 as two f64x4, on every processor.
#pragma once

namespace mvk {

struct f64x8 {
  f64x4 lo, hi;

  f64x8(f64x4 a, f64x4 b) : lo(a), hi(b) {}
  f64x8(double x) : lo(x), hi(x) {}
};

template <>
struct wide_of<f32x8> {
  using type = f64x8;
};
inline f64x8 widen(f32x8 a) { return {widen(lower(a)), widen(upper(a))}; }
inline f32x8 narrow(f64x8 a) { return both(narrow(a.lo), narrow(a.hi)); }
inline f64x8 operator*(f64x8 a, f64x8 b) { return {a.lo * b.lo, a.hi * b.hi}; }
inline f64x8 operator/(f64x8 a, f64x8 b) { return {a.lo / b.lo, a.hi / b.hi}; }

}  // namespace mvk
