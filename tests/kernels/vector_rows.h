// Kernels that turn vectors into vectors, element by element: what such a kernel is,
// and the ways in which every one of them is run against its definition.
#ifndef MVK_TESTS_KERNELS_VECTOR_ROWS_H_
#define MVK_TESTS_KERNELS_VECTOR_ROWS_H_

#include <cstddef>
#include <cstdint>

namespace testing_support {

// Everything that a kernel of any kind is called with.
struct VectorCall {
  float *y;
  float *z;
  const float *a;
  const float *b;
  float s;
  float t;
  int32_t k;
  uint32_t n;

  uint32_t unsigned_k() const { return static_cast<uint32_t>(k); }
};

// How many floats a buffer holds for a count.
using SizeOf = size_t (*)(uint32_t n);
inline size_t NoFloats(uint32_t) { return 0; }
inline size_t Reals(uint32_t n) { return n; }
inline size_t Pairs(uint32_t n) { return size_t{2} * n; }

enum class Form { kFlex, kStrict };

struct VectorKernel {
  const char *name;
  float *(*flex)(const VectorCall &);
  float *(*strict)(const VectorCall &);
  void (*oracle)(const VectorCall &);
  void (*strict_oracle)(const VectorCall &) = nullptr;  // where the forms differ
  SizeOf y = Reals;
  SizeOf z = NoFloats;
  SizeOf a = NoFloats;
  SizeOf b = NoFloats;
  bool block = false;   // takes no count: always 32
  bool over_a = false;  // the result may be written over this input
  bool over_b = false;
  bool copies = false;  // NaNs come out by their bits
};

// Counts 0 to 67 of the flex form with every buffer at each distance of 0 to 7 floats
// from a 32-byte boundary.
void ExpectAnyCountAtAnyAlignment(const VectorKernel &kernel);

// Both forms at their counts over all kinds of samples.
void ExpectAnySamples(const VectorKernel &kernel);

// The result is the first input, the second or both at once.
void ExpectResultsOverInputs(const VectorKernel &kernel);

// A special value at each place of each buffer in turn, at counts up to `most`: the
// other places don't see it.
void ExpectSpecialValuesAtEachPlace(const VectorKernel &kernel, uint32_t most = 13);

// Special scalars with special samples, every pair of them.
void ExpectSpecialScalars(const VectorKernel &kernel);

// Shifts from -200 to 200 and around the ends of 32 bits.
void ExpectAnyShift(const VectorKernel &kernel);

// Nothing is read or written before or behind the buffers.
void ExpectNothingTouchedOutside(const VectorKernel &kernel);

}  // namespace testing_support

#endif
