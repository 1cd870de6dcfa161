#include "fft/kernel_forms.h"

namespace testing_support {
namespace {

const EntryPoint kEntryPoints[] = {MVK_COMPOSITE_LENGTHS(MVK_ENTRY_POINT_ROWS)};

}  // namespace

std::span<const EntryPoint> CompositeEntryPoints() { return kEntryPoints; }

}  // namespace testing_support
