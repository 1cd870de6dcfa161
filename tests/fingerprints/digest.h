// What a fingerprint is: 64 bits made of all bits of a result.
#ifndef MVK_TESTS_FINGERPRINTS_DIGEST_H_
#define MVK_TESTS_FINGERPRINTS_DIGEST_H_

#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>

namespace testing_support {

// FNV-1a over words of 32 bits: a difference in any of them is one in the end, unless another
// difference makes up for it. Sign bits, the last of a word, are carried on by the product, as
// they wouldn't be in words of 64 bits.
class Digest {
 public:
  uint64_t value() const { return value_; }

  void Word(uint32_t bits) { value_ = (value_ ^ bits) * 0x100000001b3; }
  void Integer(uint64_t x) {
    Word(static_cast<uint32_t>(x));
    Word(static_cast<uint32_t>(x >> 32));
  }

  // Every NaN counts as the same one: which of two operands' it is, is the processor's choice.
  void Number(float x) { Word(std::isnan(x) ? 0x7fc00000 : std::bit_cast<uint32_t>(x)); }
  void Number(double x) {
    Integer(std::isnan(x) ? 0x7ff8000000000000 : std::bit_cast<uint64_t>(x));
  }
  void Numbers(std::span<const float> values) {
    for (float x : values) Number(x);
  }
  void Numbers(const float *values, size_t count) { Numbers(std::span(values, count)); }

  // Copies and tables keep the bits of NaNs, too.
  void Bytes(const void *bytes, size_t count) {
    const auto *from = static_cast<const uint8_t *>(bytes);
    for (; count >= sizeof(uint32_t); count -= sizeof(uint32_t), from += sizeof(uint32_t)) {
      uint32_t word;
      std::memcpy(&word, from, sizeof word);
      Word(word);
    }
    for (; count > 0; --count) Word(*from++);
  }
  void Text(const char *text) { Bytes(text, std::strlen(text) + 1); }

 private:
  uint64_t value_ = 0xcbf29ce484222325;
};

}  // namespace testing_support

#endif
