/* Floats to the integers of an audio file. */
#ifndef MVK_TOOLS_QUANTISE_H
#define MVK_TOOLS_QUANTISE_H

#include <cstdint>
#include <span>

namespace mvk {

/* Rounds to the nearest integer of `bits` bits, full scale 2^(bits-1), and
 * stores it in the upper bits of the result, where libsndfile takes the samples
 * of every width from:
 *
 *     result = clamp(round(x * 2^(bits-1))) * 2^(width of result - bits)
 *
 * Ties go to the even integer and NaNs become 0. Returns how many samples lay
 * beyond full scale. */
uint64_t quantise(std::span<const float> samples, int bits, short *result);
uint64_t quantise(std::span<const float> samples, int bits, int *result);

}  // namespace mvk

#endif
