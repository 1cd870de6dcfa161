#include "fft/kernel_forms.h"

namespace testing_support {
namespace {

#define ROWS(n) MVK_KERNEL_ROWS(MVK_r8, kRadix8, n)

const Kernel kKernels[] = {
    ROWS(64) ROWS(128) ROWS(144) ROWS(192) ROWS(240) ROWS(256) ROWS(320) ROWS(384)  //
    ROWS(512) ROWS(576) ROWS(720) ROWS(768) ROWS(960) ROWS(1024) ROWS(2048) ROWS(4096)};

}  // namespace

std::span<const Kernel> Radix8Kernels() { return kKernels; }

}  // namespace testing_support
