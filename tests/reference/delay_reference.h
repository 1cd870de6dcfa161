// A delay line that keeps every sample that it has ever been given, for tests.
#ifndef MVK_TESTS_REFERENCE_DELAY_REFERENCE_H_
#define MVK_TESTS_REFERENCE_DELAY_REFERENCE_H_

#include <cstddef>
#include <cstdint>
#include <vector>

namespace reference {

class Delay {
 public:
  explicit Delay(uint32_t longest) : heard_(size_t{longest} + 32, 0.0f) {}

  void Write(const float *x) { heard_.insert(heard_.end(), x, x + 32); }

  // The block that begins d samples before the newest one: silence, where nothing was written.
  const float *Read(uint32_t d) const { return heard_.data() + heard_.size() - 32 - d; }

 private:
  std::vector<float> heard_;
};

// Samples in the ring for delays up to d: whole blocks, and one more for the newest.
inline uint32_t RingLength(uint32_t d) { return (d + 31) / 32 * 32 + 32; }

}  // namespace reference

#endif
