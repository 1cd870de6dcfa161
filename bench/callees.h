// What the kernels are compared with, in a library of its own: a call across a library's
// border costs as much as a short kernel, and has to be in both figures.
#pragma once

#include <cstddef>
#include <span>
#include <string_view>

namespace bench {

// Copies 32 samples, aligned to 32 bytes, by 32 bytes at a time. Returns y.
float *copy_block(float *y, const float *x);

// Copies n samples, a multiple of 32, aligned alike, in the same way. Returns y.
float *copy(float *y, const float *x, std::size_t n);

// An implementation of a kernel of VOLK's, to be called as what VOLK's header
// declares the kernel to be. Its name ends with the instruction sets that it needs.
struct volk_form {
  const char *kernel, *name;
  void (*function)();

  bool needs_avx512() const { return std::string_view(name).ends_with("avx512f"); }
};

// All that the processor can run; none if the benchmark is built without VOLK.
std::span<const volk_form> volk_forms();

}  // namespace bench
