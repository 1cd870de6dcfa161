// The Fourier transforms of a length each: kernels and sized entry points.
#include <bit>

#include "fingerprints/corpus.h"
#include "fingerprints/entries.h"
#include "fingerprints/fft_rows.h"

namespace testing_support {
namespace {

#define ROW(function, N) {#function, N, function},
#define KERNELS(family, N) \
  ROW(family##_fft_##N, N) \
  ROW(family##_inv_fft_##N, N) ROW(family##_fft_##N##_s, N) ROW(family##_inv_fft_##N##_s, N)
#define RADIX4(N) KERNELS(MVK_r4, N)
#define RADIX8(N) KERNELS(MVK_r8, N)
#define ENTRY_POINTS(N)       \
  ROW(mvk_fft_fwd_usc_##N, N) \
  ROW(mvk_fft_inv_usc_##N, N) ROW(mvk_fft_fwd_scl_##N, N) ROW(mvk_fft_inv_scl_##N, N)

const FftRow kRadix4[] = {MVK_FFT_POWERS_OF_TWO(RADIX4) MVK_FFT_COMPOSITES(RADIX4) RADIX4(4096)};
const FftRow kRadix8[] = {MVK_FFT_RADIX8(RADIX8)};

struct EntryPointRow {
  const char *name;
  uint32_t points;
  mvk_fft_transform *run;
};
const EntryPointRow kEntryPoints[] = {MVK_FFT_POWERS_OF_TWO(ENTRY_POINTS)
                                          MVK_FFT_COMPOSITES(ENTRY_POINTS)};

// Every second run at an address that isn't a multiple of 8.
void AddKernel(Digest &digest, const FftRow &row) {
  int offset = 0;
  for (const Material &material : kSignals) {
    GuardedFloats src(Corpus(material, row.points).Copy(2 * size_t{row.points}), 3 * offset);
    GuardedFloats dst(src.size(), 5 * offset);
    row.run(dst.data(), src.data(), row.points);
    digest.Numbers(dst.values());
    offset = 1 - offset;
  }
}

// Powers of two also in place, and with the work area where the source is.
void AddEntryPoint(Digest &digest, const EntryPointRow &row) {
  for (const Material &material : kSignals) {
    const std::vector<float> x = Corpus(material, row.points).Copy(2 * size_t{row.points});
    GuardedFloats src(x, 0), dst(x.size(), 1), scratch(x.size(), 3);
    row.run(dst.data(), src.data(), scratch.data());
    digest.Numbers(dst.values());
    if (!std::has_single_bit(row.points)) continue;
    GuardedFloats both(x, 0);
    row.run(both.data(), nullptr, scratch.data());
    digest.Numbers(both.values());
    row.run(dst.data(), src.data(), src.data());
    digest.Numbers(dst.values());
  }
}

}  // namespace

std::span<const FftRow> Radix4Rows() { return kRadix4; }
std::span<const FftRow> Radix8Rows() { return kRadix8; }

void ListTransformsByLength(Entries &entries) {
  for (const FftRow &row : kRadix4) {
    entries.push_back({row.name, [&row](Digest &digest) { AddKernel(digest, row); }});
  }
  for (const FftRow &row : kRadix8) {
    if (!RoundsAlike(row.points)) continue;
    entries.push_back({row.name, [&row](Digest &digest) { AddKernel(digest, row); }});
  }
  for (const EntryPointRow &row : kEntryPoints) {
    entries.push_back({row.name, [&row](Digest &digest) { AddEntryPoint(digest, row); }});
  }
}

}  // namespace testing_support
