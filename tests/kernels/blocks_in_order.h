// Kernels that take one block a call and go on from a state: what such a kernel is, and the ways
// in which every one of them is run against one long recursion.
#ifndef MVK_TESTS_KERNELS_BLOCKS_IN_ORDER_H_
#define MVK_TESTS_KERNELS_BLOCKS_IN_ORDER_H_

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace testing_support {

struct StatefulCall {
  float *y;
  const float *x;
  const float *addend;
  const float *c;
  float *s;
  uint32_t u;  // the shift, or the number of taps
};

enum class InPlace { kAllowed, kNever, kAlways };

struct StatefulKernel {
  std::string name;
  float *(*flex)(const StatefulCall &);
  float *(*strict)(const StatefulCall &);
  void (*oracle)(const StatefulCall &, size_t n);  // any number n of input samples
  size_t coefficients;
  size_t state;  // its size in floats
  uint32_t u = 0;
  bool shifts = false;  // u is a shift
  bool adds = false;    // takes an addend
  InPlace in_place = InPlace::kAllowed;
  size_t inputs = 32;  // samples that a block reads and writes
  size_t outputs = 32;
  int wide = -1;          // the float of the state at which a binary64 begins
  bool positive = false;  // runs on positive samples: it overflows on those of both signs
};

// Both forms over several blocks of random samples, apart and in place, against the recursion run
// over all of them at once; states are compared after each block.
void ExpectOneLongRecursion(const StatefulKernel &kernel);

// The coefficients change from block to block and the state stays.
void ExpectStateApartFromCoefficients(const StatefulKernel &kernel);

// Two streams take turns.
void ExpectNothingKeptBetweenCalls(const StatefulKernel &kernel);

// The flex form with each buffer at every distance from a 32-byte boundary.
void ExpectAnyAlignment(const StatefulKernel &kernel);

// A special value at each sample, coefficient and number of the state in turn.
void ExpectSpecialValuesToPassThrough(const StatefulKernel &kernel);

// Shifts from -200 to 200, whose patterns wrap at either end.
void ExpectUncheckedShifts(const StatefulKernel &kernel);

// Nothing but zeros, of the samples and of the state.
void ExpectSilenceToStay(const StatefulKernel &kernel);

// Buffers up against pages that may not be touched, and inputs that may not be written.
void ExpectNothingTouchedOutside(const StatefulKernel &kernel);

}  // namespace testing_support

#endif
