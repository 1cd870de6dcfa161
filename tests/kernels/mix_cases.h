// Kernels that make each sample of a block from the same sample of their inputs: what such a kernel
// is, and the ways in which every one of them is run against its definition.
#ifndef MVK_TESTS_KERNELS_MIX_CASES_H_
#define MVK_TESTS_KERNELS_MIX_CASES_H_

#include <cstddef>
#include <cstdint>
#include <string>

namespace testing_support {

struct BlockCall {
  float *y;
  const float *const *x;  // the inputs
  const float *g;         // gains, limits or whatever else goes for all samples
  uint32_t k;
};

struct BlockKernel {
  std::string name;
  float *(*flex)(const BlockCall &);
  float *(*strict)(const BlockCall &);
  float (*oracle)(const float *x, const float *g, uint32_t k);  // x: a sample of each input
  size_t inputs;
  size_t parameters = 0;  // floats at g
  bool shifts = false;
  bool copies = false;    // NaNs keep their bits
  bool adjacent = false;  // the inputs lie one behind the other
};

// Both forms on random samples of every kind.
void ExpectDefinition(const BlockKernel &kernel);

// The result over each input in turn.
void ExpectInPlace(const BlockKernel &kernel);

// The flex form with each buffer at every distance from a 32-byte boundary.
void ExpectAnyAlignment(const BlockKernel &kernel);

// A special value at each sample and each parameter in turn, and every meeting of special values.
void ExpectSpecialValues(const BlockKernel &kernel);

// Shifts from -200 to 200, whose patterns wrap at either end.
void ExpectUncheckedShifts(const BlockKernel &kernel);

// Buffers up against pages that may not be touched, and inputs that may not be written.
void ExpectNothingTouchedOutside(const BlockKernel &kernel);

}  // namespace testing_support

#endif
