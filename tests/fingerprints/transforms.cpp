// Fourier transforms that are looked up or chosen at run time, and real ones.
#include "fingerprints/corpus.h"
#include "fingerprints/entries.h"
#include "fingerprints/fft_rows.h"

namespace testing_support {
namespace {

constexpr uint32_t kMostPoints = 8200;

// ---- Look-ups ----

// A look-up gives the kernel that is exported, whose address a program may know by another value;
// for 8192 points it gives that of 4096.
bool IsKernel(mvk_fft_kernel *found, std::span<const FftRow> rows, uint32_t n, size_t form) {
  const uint32_t points = n == 8192 ? 4096 : n;
  const std::vector<float> x = Corpus(kUniform).Copy(2 * size_t{points});
  size_t row = 0;
  while (row < rows.size() && rows[row].points != points) ++row;
  return row < rows.size() && Transformed(found, x) == Transformed(rows[row + form].run, x);
}

void AddPairs(Digest &digest, decltype(&MVK_r4_cplx_fwd_pair) look_up, std::span<const FftRow> rows,
              size_t form) {
  for (uint32_t n = 0; n <= kMostPoints; ++n) {
    const mvk_fft_pair *const pair = look_up(n);
    digest.Integer(pair != nullptr);
    if (pair == nullptr) continue;
    digest.Integer(IsKernel(pair->unscaled, rows, n, form));
    digest.Integer(IsKernel(pair->scaled, rows, n, form + 2));
  }
}

void AddKernels(Digest &digest, decltype(&MVK_r4_cplx_fwd_unscaled) look_up, size_t form) {
  for (uint32_t n = 0; n <= kMostPoints; ++n) {
    mvk_fft_kernel *const kernel = look_up(n);
    digest.Integer(kernel != nullptr);
    if (kernel != nullptr) digest.Integer(IsKernel(kernel, Radix4Rows(), n, form));
  }
}

// ---- A transform chosen at run time ----

constexpr int32_t kFlags[] = {0, 1, 2, 4, 8, 0x0f, 0x10, 0x20, 0x40, 0x80, 0x11, 0xc3, 0xff};

template <typename Answer>
void AddAnswers(Digest &digest, Answer (*answer)(uint32_t, int32_t)) {
  for (uint32_t n = 0; n <= kMostPoints; ++n) {
    for (int32_t flags : kFlags) digest.Integer(static_cast<uint64_t>(answer(n, flags)));
  }
}

void AddState(Digest &digest, const mvk_fft_state &state) {
  for (mvk_fft_transform *transform :
       {state.fwd_scl, state.inv_scl, state.fwd_usc, state.inv_usc}) {
    digest.Integer(transform != nullptr);
  }
  digest.Integer(state.n);
  digest.Integer(state.flags);
}

void AddInit(Digest &digest) {
  for (uint32_t n = 0; n <= kMostPoints; ++n) {
    for (int32_t flags : kFlags) {
      alignas(8) uint8_t memory[64] = {};
      uint8_t *const place = memory + n % 8;
      const mvk_fft_state *const state = MVK_fft_init(place, n, flags);
      digest.Integer(state != nullptr);
      if (state == nullptr) continue;
      digest.Integer(static_cast<uint64_t>(reinterpret_cast<const uint8_t *>(state) - memory));
      AddState(digest, *state);
    }
  }
  digest.Integer(MVK_fft_init(nullptr, 64, 1) != nullptr);
}

void AddShutdown(Digest &digest) {
  alignas(8) uint8_t memory[64] = {};
  mvk_fft_state *const state = MVK_fft_init(memory, 64, 0xff);
  MVK_fft_shutdown(state);
  AddState(digest, *state);
  MVK_fft_shutdown(nullptr);
}

void AddTransforms(Digest &digest, decltype(&MVK_fft_CLfwd_scaledCL) transform, int32_t flags) {
  for (uint32_t n = 2; n <= 2048; ++n) {
    alignas(8) uint8_t memory[64];
    const mvk_fft_state *const state = MVK_fft_init(memory, n, flags);
    if (state == nullptr) continue;
    for (const Material &material : kSignals) {
      GuardedFloats in(Corpus(material, n).Copy(2 * size_t{n}), 1), out(2 * size_t{n}, 2);
      transform(state, out.data(), in.data());
      digest.Numbers(out.values());
    }
  }
}

// ---- Real transforms ----

void AddReal(Digest &digest, decltype(&MVK_r4_rfft_nn) transform) {
  for (uint32_t n = 2; n <= 4096; n *= 2) {
    for (const Material &material : kSignals) {
      GuardedFloats src(Corpus(material, n).Copy(2 * size_t{n}), 1), dst(2 * size_t{n}, 2);
      transform(src.data(), dst.data(), n);
      digest.Numbers(dst.values());
    }
  }
}

void AddSplit(Digest &digest, decltype(&MVK_r4_rsplit_fft_nn) transform) {
  for (uint32_t n = 2; n <= 16; n *= 2) {
    for (const Material &material : kSignals) {
      Corpus corpus(material, n);
      GuardedFloats a(corpus.Copy(n), 1), b(corpus.Copy(n), 3), dst(2 * size_t{n}, 2);
      transform(a.data(), b.data(), dst.data(), n);
      digest.Numbers(dst.values());
    }
  }
}

}  // namespace

void ListTransforms(Entries &entries) {
#define LOOK_UP(function, add, ...) \
  MVK_ENTRY(function, [](Digest &digest) { add(digest, &function, __VA_ARGS__); });
  LOOK_UP(MVK_r4_cplx_fwd_pair, AddPairs, Radix4Rows(), 0)
  LOOK_UP(MVK_r4_cplx_inv_pair, AddPairs, Radix4Rows(), 1)
  LOOK_UP(MVK_r8_cplx_fwd_pair, AddPairs, Radix8Rows(), 0)
  LOOK_UP(MVK_r8_cplx_inv_pair, AddPairs, Radix8Rows(), 1)
  LOOK_UP(MVK_r4_cplx_fwd_unscaled, AddKernels, 0)
  LOOK_UP(MVK_r4_cplx_inv_unscaled, AddKernels, 1)
  LOOK_UP(MVK_r4_cplx_fwd_scaled, AddKernels, 2)
  LOOK_UP(MVK_r4_cplx_inv_scaled, AddKernels, 3)
  MVK_ENTRY(mvk_valid_pair_ptr, [](Digest &digest) {
    const mvk_fft_pair pair = {};
    digest.Integer(static_cast<uint64_t>(mvk_valid_pair_ptr(&pair)));
    digest.Integer(static_cast<uint64_t>(mvk_valid_pair_ptr(nullptr)));
  });
#define ANSWERS(function) \
  MVK_ENTRY(function, [](Digest &digest) { AddAnswers(digest, &function); });
  ANSWERS(MVK_fft_is_supported)
  ANSWERS(MVK_fft_state_query_mem)
  ANSWERS(MVK_fft_scratch_query_mem)
  MVK_ENTRY(MVK_fft_init, AddInit);
  MVK_ENTRY(MVK_fft_shutdown, AddShutdown);
#define TRANSFORM(function, flags) \
  MVK_ENTRY(function, [](Digest &digest) { AddTransforms(digest, &function, flags); });
  TRANSFORM(MVK_fft_CLfwd_scaledCL, MVK_FFT_CLFWD_SCALEDCL)
  TRANSFORM(MVK_fft_CLfwd_unscaledCL, MVK_FFT_CLFWD_UNSCALEDCL)
  TRANSFORM(MVK_fft_CLinv_scaledCL, MVK_FFT_CLINV_SCALEDCL)
  TRANSFORM(MVK_fft_CLinv_unscaledCL, MVK_FFT_CLINV_UNSCALEDCL)
  TRANSFORM(MVK_fft_CLfwd_scaledL, MVK_FFT_CLFWD_SCALEDL)
  TRANSFORM(MVK_fft_CLfwd_unscaledL, MVK_FFT_CLFWD_UNSCALEDL)
  TRANSFORM(MVK_fft_Linv_scaledCL, MVK_FFT_LINV_SCALEDCL)
  TRANSFORM(MVK_fft_Linv_unscaledCL, MVK_FFT_LINV_UNSCALEDCL)
#define REAL(function) MVK_ENTRY(function, [](Digest &digest) { AddReal(digest, &function); });
  REAL(MVK_r4_rfft_nn)
  REAL(MVK_r4_rfft_nn_s)
  REAL(MVK_r4_inv_rfft_nn)
  REAL(MVK_r4_inv_rfft_half_n)
  REAL(MVK_r4_inv_rfft_nn_s)
#define SPLIT(function) MVK_ENTRY(function, [](Digest &digest) { AddSplit(digest, &function); });
  SPLIT(MVK_r4_rsplit_fft_nn)
  SPLIT(MVK_r4_rsplit_fft_nn_s)
}

}  // namespace testing_support
