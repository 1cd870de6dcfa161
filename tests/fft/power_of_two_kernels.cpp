#include "fft/kernel_forms.h"

namespace testing_support {
namespace {

#define ROWS(n) MVK_KERNEL_ROWS(MVK_r4, kRadix4, n)

const Kernel kKernels[] = {MVK_POWERS_OF_TWO_UP_TO_2048(ROWS) ROWS(4096)};

}  // namespace

std::span<const Kernel> PowerOfTwoKernels() { return kKernels; }

}  // namespace testing_support
