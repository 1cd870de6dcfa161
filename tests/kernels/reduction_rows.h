// Kernels that reduce vectors to one number: what such a kernel is, and the ways in
// which every one of them is run against its definition.
#ifndef MVK_TESTS_KERNELS_REDUCTION_ROWS_H_
#define MVK_TESTS_KERNELS_REDUCTION_ROWS_H_

#include <cstdint>

namespace testing_support {

struct ReductionCall {
  const float *a;
  const float *b;
  int32_t k;
  uint32_t n;

  uint32_t unsigned_k() const { return static_cast<uint32_t>(k); }
};

// What a form of a kernel reads.
enum class Reads {
  kExactly,       // n elements
  kAtLeastOne,    // n elements, and element 0 if there are none
  kGroups,        // n rounded up to a multiple of four
  kAtLeastGroup,  // the same, and four if there are none
};

// Each number as a double, which holds it as it is.
struct Reduction {
  const char *name;  // of the kernel and its form
  double (*kernel)(const ReductionCall &);
  double (*oracle)(const ReductionCall &);
  Reads reads;
  bool aligned = false;  // takes buffers at multiples of 32 bytes only
  bool two = false;      // takes a second input
};

// Counts 0 to 67 at each alignment; what lies behind the elements is infinite.
void ExpectAnyCountAtAnyAlignment(const Reduction &reduction);

// All kinds of samples, at counts up to some thousands.
void ExpectAnySamples(const Reduction &reduction);

// A special value at each place in turn, alone and along with another.
void ExpectSpecialValuesAtEachPlace(const Reduction &reduction);

// Shifts from -200 to 200 and around the ends of 32 bits.
void ExpectAnyShift(const Reduction &reduction);

// Nothing is read before or behind the elements.
void ExpectNothingReadOutside(const Reduction &reduction);

}  // namespace testing_support

#endif
