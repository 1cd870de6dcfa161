// What is asked of every kernel, whatever its arithmetic.
#ifndef MVK_TESTS_FFT_KERNEL_CHECKS_H_
#define MVK_TESTS_FFT_KERNEL_CHECKS_H_

#include <functional>
#include <span>

#include "fft/fft_kernels.h"
#include "reference/fft_exact.h"

namespace testing_support {

using reference::WideArray;

// The transform that a kernel is held to.
using WideTransform = std::function<WideArray(const Kernel &kernel, const ComplexArray &x)>;

WideArray ExactResult(const Kernel &kernel, const ComplexArray &x);

// With source and destination at any float, between guards. A source that has to survive does,
// and any other is worked in.
void ExpectNothingOutsideIsTouched(std::span<const Kernel> kernels);

void ExpectLengthArgumentIsIgnored(std::span<const Kernel> kernels);

// The kernels that may run in place do, and the others make something else of their input.
void ExpectInPlaceWhereAllowed(std::span<const Kernel> kernels);

// The largest error of a transform of noise, over the rms of the result and averaged over several,
// stays below the bound, and the rms of its errors below a third of that.
void ExpectAccuracy(std::span<const Kernel> kernels, const WideTransform &want, double bound);

// An impulse at every place of a short transform and at many of a long one.
void ExpectImpulses(std::span<const Kernel> kernels, double (*bound)(uint32_t length));

// An impulse at nought is in every bin, but for the scale to the bit.
void ExpectWholeImpulseAtNought(std::span<const Kernel> kernels);

}  // namespace testing_support

#endif
