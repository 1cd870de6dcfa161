// The largest magnitude, for other families.
#pragma once

#include <cstddef>

namespace mvk {

// Over x[0] to x[n - 1], 0 for none. A NaN gives a NaN.
float largest_magnitude(const float *x, std::size_t n);

}  // namespace mvk
