// Mixes of complex planes with real gains.
#include <algorithm>

#include "kernels/kernel.h"

using namespace mvk;

namespace {

// Planes at one place of theirs, with their gains.
template <class V>
struct planes {
  const float *first;
  std::size_t stride;
  const float *g;

  V operator[](int p) const { return load<V>(first + static_cast<std::size_t>(p) * stride); }
  V gain(int p) const { return g[p]; }
};

struct mix4 {
  static constexpr int gains = 4;

  template <class V>
  V operator()(planes<V> p) const {
    return fma(p[3], p.gain(3), fma(p[2], p.gain(2), fma(p[0], p.gain(0), p[1] * p.gain(1))));
  }
};

struct mix6 {
  static constexpr int gains = 6;

  template <class V>
  V operator()(planes<V> p) const {
    return fma(p[5], p.gain(5), fma(p[4], p.gain(4), mix4{}(p)));
  }
};

// Of seven, the last three are mixed apart and joined by the first four.
struct mix7 {
  static constexpr int gains = 7;

  template <class V>
  V operator()(planes<V> p) const {
    return fma(p.gain(6), p[6], fma(p.gain(4), p[4], p.gain(5) * p[5]) + mix4{}(p));
  }
};

// Calls body(planes, i) for the real and imaginary samples i of n complex ones;
// the gains are copied, so that a result doesn't write over them.
template <int gains, class Body>
void for_planes(const float *first, const float *g, uint32_t n, Body body) {
  const std::size_t stride = 2 * ((std::size_t{n} + 3) & ~std::size_t{3});
  float own[gains];
  std::copy_n(g, gains, own);
  counted(std::size_t{2} * n, [&]<class V>(std::size_t i) {
    body(planes<V>{first + i, stride, own}, i);
  });
}

// y with the first gains, z with the next.
template <class Mix>
float *mix_twice(float *y, float *z, const float *first, const float *g, uint32_t n, Mix mix) {
  for_planes<2 * Mix::gains>(first, g, n, [=]<class V>(planes<V> p, std::size_t i) {
    const V sum_y = mix(p), sum_z = mix(planes<V>{p.first, p.stride, p.g + Mix::gains});
    store(y + i, sum_y);
    store(z + i, sum_z);
  });
  return y;
}

}  // namespace

MVK_KERNEL(float *, CLmix4CL4SU, (float *y, const float *first, const float *g, uint32_t n)) {
  for_planes<4>(first, g, n, [=](auto p, std::size_t i) { store(y + i, mix4{}(p)); });
  return y;
}
MVK_KERNEL(float *, CLCLmix4CL8SU,
           (float *y, float *z, const float *first, const float *g, uint32_t n)) {
  return mix_twice(y, z, first, g, n, mix4{});
}
MVK_KERNEL(float *, CLCLmix6CL12SU,
           (float *y, float *z, const float *first, const float *g, uint32_t n)) {
  return mix_twice(y, z, first, g, n, mix6{});
}
MVK_KERNEL(float *, CLCLmix7CL14SU,
           (float *y, float *z, const float *first, const float *g, uint32_t n)) {
  return mix_twice(y, z, first, g, n, mix7{});
}

// Kept for programs that were linked with them.
extern "C" const uint32_t mvk_clclmix5cl10csu_c = 0;
extern "C" const uint32_t mvk_clclmix5cl10csu_order_coef_c = 0;
extern "C" const uint32_t mvk_unused_debug = 0;
