// The windows of the QMF banks: the sum over a prototype's 2 P blocks, once for each sample.
#include "filterbanks/qmf_windows.h"

#include <algorithm>
#include <cstddef>

#include "core/complex.h"
#include "core/loop.h"
#include "filterbanks/rotation.h"

using namespace mvk;

// ---- Analysis -----------------------------------------------------------------

namespace {

// Sums over the blocks of even and of odd age.
template <class V>
struct folded {
  V even, odd;
};

// Block 0 is what came in, block j + 1 is slot_ptr[j]; block j meets tap 2 P - 1 - j of the
// prototype. Taps come in the order 3, 1, 5, 7 (, 9) and 2, 0, 4, 6 (, 8).
template <int P, class V>
MVK_INLINE folded<V> window(const float *prototype, const float *const (&blocks)[2 * P],
                            std::size_t M, std::size_t k) {
  const auto c = [=](int tap) { return load<V>(prototype + tap * M + k); };
  const auto x = [&](int tap) { return load<V>(blocks[2 * P - 1 - tap] + k); };
  V even = c(3) * x(3), odd = c(2) * x(2);
  even = fma(c(1), x(1), even);
  odd = fma(c(0), x(0), odd);
  unrolled<P - 2>([&](auto i) {
    even = fma(c(2 * i + 5), x(2 * i + 5), even);
    odd = fma(c(2 * i + 4), x(2 * i + 4), odd);
  });
  return {even, P == 5 ? odd : -odd};
}

// fold(k, sums) puts a vector away. The samples go over the oldest block, and only pointers move.
// Bounded by loads: 4 P of them for a vector of samples.
template <int P, class Fold>
MVK_INLINE void window_blocks(float **slot_ptr, const float *prototype, const float *in,
                              std::size_t M, Fold fold) {
  const float *blocks[2 * P] = {in};
  unrolled<2 * P - 1>([&](auto j) { blocks[j + 1] = slot_ptr[j]; });
  float *const oldest = slot_ptr[2 * P - 2];
  counted_fours<native>(M, [&]<class V>(std::size_t k) {
    const folded<V> sums = window<P, V>(prototype, blocks, M, k);
    store(oldest + k, load<V>(in + k));
    fold(k, sums);
  });
  std::copy_backward(slot_ptr, slot_ptr + 2 * P - 2, slot_ptr + 2 * P - 1);
  slot_ptr[0] = oldest;
}

// Two streams of M, from the last sample to the first: even ages at 2 M, odd ones at 3 M.
template <int P>
MVK_INLINE void analyse_real(float *scratch, float **slot_ptr, const float *prototype,
                             const float *in, std::size_t M) {
  float *const even = scratch + 3 * M, *const odd = scratch + 4 * M;
  window_blocks<P>(slot_ptr, prototype, in, M, [=]<class V>(std::size_t k, folded<V> sums) {
    store(even - k - lanes<V>, reverse(sums.even));
    store(odd - k - lanes<V>, reverse(sums.odd));
  });
}

// M complex values (odd + i even) (c1 + i c2), from the last sample to the first.
template <int P>
MVK_INLINE void analyse_complex(float *scratch, float **slot_ptr, const float *prototype,
                                const float *cos_table, const float *in, std::size_t M) {
  window_blocks<P>(slot_ptr, prototype, in, M, [=]<class V>(std::size_t k, folded<V> sums) {
    const std::size_t i = M - k - lanes<V>;
    const V a = reverse(sums.odd), b = reverse(sums.even);
    const cpx<V> c = load_rotation<V>(cos_table, i);
    store_complex(scratch + 2 * i, cpx<V>{a, b} * c);
  });
}

}  // namespace

#define MVK_ANALYSIS_WINDOWS(suffix, P)                                                           \
  void mvk_qmf_ana_window##suffix(float *scratch, float **slot_ptr, const float *prototype,       \
                                  const float *, const float *in, uint32_t bands) {               \
    analyse_real<P>(scratch, slot_ptr, prototype, in, bands);                                     \
  }                                                                                               \
  void mvk_qmf_ana_window_cplx##suffix(float *scratch, float **slot_ptr, const float *prototype,  \
                                       const float *cos_table, const float *in, uint32_t bands) { \
    analyse_complex<P>(scratch, slot_ptr, prototype, cos_table, in, bands);                       \
  }
MVK_ANALYSIS_WINDOWS(_p4, 4)
MVK_ANALYSIS_WINDOWS(_p5, 5)
MVK_ANALYSIS_WINDOWS(_s_p4, 4)
MVK_ANALYSIS_WINDOWS(_s_p5, 5)

// ---- Synthesis ----------------------------------------------------------------

namespace {

// Of samples k, k + 1 and so on, the 2 P - 1 stages stand one after the other, a vector each, so
// that a pass walks memory in order. Returns the sum that leaves, at half its level. Bounded by
// the loads of stages and taps.
template <int P, class V>
MVK_INLINE V delay_line(float *history, const float *prototype, std::size_t M, std::size_t k, V a,
                        V b) {
  float *const stages = history + (2 * P - 1) * k;
  const auto c = [=](int tap) { return load<V>(prototype + tap * M + k); };
  const V even = P == 5 ? a : -a;
  const V out = fma(c(0), even, load<V>(stages));
  unrolled<2 * P - 2>([&](auto j) {
    store(stages + j * lanes<V>,
          fma(c(j + 1), j % 2 == 0 ? b : even, load<V>(stages + (j + 1) * lanes<V>)));
  });
  store(stages + (2 * P - 2) * lanes<V>, c(2 * P - 1) * b);
  return out;
}

template <int P>
MVK_INLINE void synthesise_real(float *out, float *history, const float *prototype,
                                const float *scratch, std::size_t M) {
  counted_fours<native>(M, [=]<class V>(std::size_t k) {
    const V y =
        delay_line<P, V>(history, prototype, M, k, load<V>(scratch + k), load<V>(scratch + M + k));
    store(out + k, y + y);
  });
}

template <int P, bool half>
MVK_INLINE void synthesise_complex(float *out, float *history, const float *prototype,
                                   const float *cos_table, const float *scratch, std::size_t M) {
  counted_fours<native>(M, [=]<class V>(std::size_t k) {
    const cpx<V> u = load_complex<V>(scratch + 2 * k);
    const cpx<V> c = load_rotation<V>(cos_table, k);
    const V a = fma(u.im, c.re, u.re * c.im), b = fms(u.re, c.re, u.im * c.im);
    const V y = delay_line<P, V>(history, prototype, M, k, a + a, b + b);
    store(out + k, half ? y : y + y);
  });
}

}  // namespace

#define MVK_SYNTHESIS_WINDOW_COMPLEX(name, P, half)                                     \
  void name(float *out, float *history, const float *prototype, const float *cos_table, \
            const float *scratch, uint32_t bands) {                                     \
    synthesise_complex<P, half>(out, history, prototype, cos_table, scratch, bands);    \
  }
#define MVK_SYNTHESIS_WINDOWS(suffix, P)                                                 \
  void mvk_qmf_syn_window##suffix(float *out, float *history, const float *prototype,    \
                                  const float *, const float *scratch, uint32_t bands) { \
    synthesise_real<P>(out, history, prototype, scratch, bands);                         \
  }                                                                                      \
  MVK_SYNTHESIS_WINDOW_COMPLEX(mvk_qmf_syn_window_cplx##suffix, P, false)
MVK_SYNTHESIS_WINDOWS(_p4, 4)
MVK_SYNTHESIS_WINDOWS(_p5, 5)
MVK_SYNTHESIS_WINDOWS(_s_p4, 4)
MVK_SYNTHESIS_WINDOWS(_s_p5, 5)
MVK_SYNTHESIS_WINDOW_COMPLEX(mvk_qmf_syn_window_cplx_head1bit_p4, 4, true)
MVK_SYNTHESIS_WINDOW_COMPLEX(mvk_qmf_syn_window_cplx_head1bit_p5, 5, true)
