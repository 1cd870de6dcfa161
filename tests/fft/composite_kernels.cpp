#include "fft/kernel_forms.h"

namespace testing_support {
namespace {

#define ROWS(n) MVK_KERNEL_ROWS(MVK_r4, kRadix4, n)

const Kernel kKernels[] = {MVK_COMPOSITE_LENGTHS(ROWS)};

}  // namespace

std::span<const Kernel> CompositeKernels() { return kKernels; }

}  // namespace testing_support
