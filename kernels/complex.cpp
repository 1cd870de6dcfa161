// Complex vectors: pairs of samples, real part first.
#include <cstring>

#include "core/complex.h"
#include "kernels/kernel.h"

using namespace mvk;

namespace {

// As many complex samples as V has lanes, in split order.
template <class V>
cpx<V> load_pairs(const float *p) {
  const auto [re, im] = split_pairs(load<V>(p), load<V>(p + lanes<V>));
  return {re, im};
}

template <class V>
void store_pairs(float *p, cpx<V> a) {
  const auto [first, second] = join_pairs(a.re, a.im);
  store(p, first);
  store(p + lanes<V>, second);
}

// y[i] = f(x[i]...) over n complex samples, read before they are written.
template <class F, class... X>
float *map_pairs(float *y, uint32_t n, F f, const X *...x) {
  counted(n, [&]<class V>(std::size_t i) {
    store_pairs<V>(y + 2 * i, f(load_pairs<V>(x + 2 * i)...));
  });
  return y;
}

// The same where real and imaginary parts are treated alike.
template <class F, class... X>
float *map_parts(float *y, uint32_t n, F f, const X *...x) {
  return map(y, std::size_t{2} * n, f, x...);
}

// a * b with the real part as real(p, q) forms it.
template <class Real>
float *multiply(float *y, const float *a, const float *b, uint32_t n, Real real) {
  return map_pairs(
      y, n,
      [=]<class V>(cpx<V> p, cpx<V> q) -> cpx<V> {
        return {real(p, q), fma(p.re, q.im, p.im * q.re)};
      },
      a, b);
}

// p * (1 / |x|^2), the reciprocal and its products in binary64.
template <class V>
cpx<V> over_square(cpx<V> p, cpx<V> x) {
  const auto inverse = wide<V>(1.0) / widen(fma(x.re, x.re, x.im * x.im));
  return {narrow(widen(p.re) * inverse), narrow(widen(p.im) * inverse)};
}

// f / x
float *divide_scalar(float *y, const float *x, float f, uint32_t n) {
  return map_pairs(
      y, n,
      [=]<class V>(cpx<V> a) {
        return over_square({f * a.re, -(a.im * f)}, a);
      },
      x);
}

float *scale(float *y, const float *x, float s, uint32_t n) {
  return map_parts(
      y, n, [=](auto a) { return a * s; }, x);
}

}  // namespace

// ---- Sums and copies ----------------------------------------------------------

MVK_KERNEL(float *, CLaddCLCLU, (float *y, const float *a, const float *b, uint32_t n)) {
  return map_parts(
      y, n, [](auto p, auto q) { return p + q; }, a, b);
}
MVK_KERNEL(float *, CLsubCLCLU, (float *y, const float *a, const float *b, uint32_t n)) {
  return map_parts(
      y, n, [](auto p, auto q) { return p - q; }, a, b);
}
MVK_KERNEL(float *, CLcopyCLU, (float *y, const float *x, uint32_t n)) {
  std::memmove(y, x, std::size_t{8} * n);
  return y;
}
MVK_KERNEL(float *, CLzeroCLU, (float *y, uint32_t n)) {
  std::memset(y, 0, std::size_t{8} * n);
  return y;
}

// ---- Products -----------------------------------------------------------------

// The forms fuse different products into the real part.

float *mvk_CLmpyCLCSU_flex(float *y, const float *a, const float *b, uint32_t n) {
  return multiply(y, a, b, n, [](auto p, auto q) { return fnms(p.re, q.re, p.im * q.im); });
}
float *MVK_CLmpyCLCSU_strict(float *y, const float *a, const float *b, uint32_t n) {
  return multiply(y, a, b, n, [](auto p, auto q) { return fms(p.im, q.im, p.re * q.re); });
}

MVK_KERNEL(float *, CLmacCLCLU, (float *y, const float *a, const float *b, uint32_t n)) {
  return map_pairs(
      y, n,
      []<class V>(cpx<V> sum, cpx<V> p, cpx<V> q) -> cpx<V> {
        return {fms(p.im, q.im, fma(p.re, q.re, sum.re)), fma(p.im, q.re, p.re * q.im) + sum.im};
      },
      y, a, b);
}

MVK_KERNEL(float *, cvec_Lmpy_conjLLIU,
           (float *y, const float *a, const float *b, int32_t k, uint32_t n)) {
  const auto product = []<class V>(cpx<V> p, cpx<V> q) -> cpx<V> {
    return {fma(q.re, p.re, q.im * p.im), fnms(q.re, p.im, q.im * p.re)};
  };
  if (k == 0) return map_pairs(y, n, product, a, b);  // 2^0 changes nothing
  const float f = exp2_bits(static_cast<uint32_t>(k));
  return map_pairs(
      y, n,
      [=]<class V>(cpx<V> p, cpx<V> q) {
        return product(cpx<V>{f * p.re, f * p.im}, cpx<V>{f * q.re, f * q.im});
      },
      a, b);
}

MVK_KERNEL(float *, CLmpyCLVSU, (float *y, const float *x, const float *v, uint32_t n)) {
  counted(n, [=]<class V>(std::size_t i) {
    const V own_order = natural_order(load<V>(v + i));
    const auto [first, second] = join_pairs(own_order, own_order);
    const V a = load<V>(x + 2 * i), b = load<V>(x + 2 * i + lanes<V>);
    store(y + 2 * i, a * first);
    store(y + 2 * i + lanes<V>, b * second);
  });
  return y;
}

// ---- Scalars and shifts ---------------------------------------------------------

MVK_KERNEL(float *, CLmpyCLSU, (float *y, const float *x, float s, uint32_t n)) {
  return scale(y, x, s, n);
}
MVK_KERNEL(float *, CLmpy_shlCLSIU, (float *y, const float *x, float s, int32_t k, uint32_t n)) {
  return scale(y, x, s * exp2_bits(static_cast<uint32_t>(k)), n);
}
MVK_KERNEL(float *, CLmpy_shlCLSIU_inplace, (float *y, float s, int32_t k, uint32_t n)) {
  return mvk_CLmpy_shlCLSIU_flex(y, y, s, k, n);
}
MVK_KERNEL(float *, CLshlCLUU, (float *y, const float *x, uint32_t k, uint32_t n)) {
  return k == 0 ? mvk_CLcopyCLU_flex(y, x, n) : scale(y, x, exp2_bits(k), n);
}
MVK_KERNEL(float *, CLshrCLUU, (float *y, const float *x, uint32_t k, uint32_t n)) {
  return k == 0 ? mvk_CLcopyCLU_flex(y, x, n) : scale(y, x, exp2_bits_right(k), n);
}

MVK_KERNEL(float *, CLmacCLLU, (float *y, const float *x, float s, uint32_t n)) {
  return map_parts(
      y, n, [=](auto sum, auto a) { return fma(a, decltype(a)(s), sum); }, y, x);
}
MVK_KERNEL(float *, CLmixCLCLSSU,
           (float *y, const float *a, const float *b, float s, float t, uint32_t n)) {
  return map_parts(
      y, n, [=](auto p, auto q) { return fma(p, decltype(p)(s), t * q); }, a, b);
}

// ---- Quotients and magnitudes ---------------------------------------------------

MVK_KERNEL(float *, CLdivCLCLU, (float *y, const float *a, const float *b, uint32_t n)) {
  return map_pairs(
      y, n,
      []<class V>(cpx<V> p, cpx<V> q) {
        return over_square<V>({fma(p.re, q.re, p.im * q.im), fnms(p.im, q.re, p.re * q.im)}, q);
      },
      a, b);
}
MVK_KERNEL(float *, CLrecipCLUU, (float *y, const float *x, uint32_t k, uint32_t n)) {
  return divide_scalar(y, x, exp2_bits_right(k), n);
}
MVK_KERNEL(float *, CLmpy_recipCLLIU, (float *y, const float *x, float s, int32_t k, uint32_t n)) {
  return divide_scalar(y, x, s * exp2_bits(static_cast<uint32_t>(k)), n);
}

MVK_KERNEL(float *, VLsquaredmagCLIU, (float *y, const float *x, int32_t k, uint32_t n)) {
  const float f = exp2_bits(static_cast<uint32_t>(k));
  counted(n, [=]<class V>(std::size_t i) {
    const cpx<V> a = load_pairs<V>(x + 2 * i);
    const V u = f * a.re, v = f * a.im;
    store(y + i, natural_order(fma(u, u, v * v)));
  });
  return y;
}
