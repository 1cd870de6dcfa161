#include "fft/kernel_forms.h"

namespace testing_support {
namespace {

const EntryPoint kEntryPoints[] = {MVK_POWERS_OF_TWO_UP_TO_2048(MVK_ENTRY_POINT_ROWS)};

}  // namespace

std::span<const EntryPoint> PowerOfTwoEntryPoints() { return kEntryPoints; }

}  // namespace testing_support
