// The two low-pass prototypes as whole numbers, for tests.
#ifndef MVK_TESTS_REFERENCE_PROTOTYPE_TAPS_H_
#define MVK_TESTS_REFERENCE_PROTOTYPE_TAPS_H_

namespace reference {

// Samples of one phase that a block remembers from the ones before it.
inline constexpr int kHistory = 23;

// Frames of a block at the higher rate.
inline constexpr unsigned kBlockFrames = 256;

// Taps of the prototype of a factor: 41 and 81.
constexpr int TapCount(unsigned factor) { return 20 * static_cast<int>(factor) + 1; }

// Tap t of the prototype of factor 2 or 4 in units of 2^-15; zero outside the prototype.
constexpr int Tap(unsigned factor, int t) {
  constexpr int kHalf2[] = {8,   15,   -23,  -113, -119, 63,    201,   -31,  -351,  -87,  531,
                            323, -726, -743, 914,  1494, -1071, -3096, 1175, 10299, 15172};
  constexpr int kHalf4[] = {0,     -2,    -8,   -19,  -37,  -58,  -73,  -72, -47, 0,   55,
                            96,    97,    47,   -42,  -133, -177, -136, -9,  156, 278, 277,
                            122,   -139,  -389, -485, -333, 46,   498,  790, 714, 203, -589,
                            -1311, -1526, -897, 650,  2847, 5142, 6875, 7520};
  const int centre = TapCount(factor) / 2;
  if (t < 0 || t > 2 * centre) return 0;
  const int mirrored = t <= centre ? t : 2 * centre - t;
  return factor == 2 ? kHalf2[mirrored] : kHalf4[mirrored];
}

// Slot k of phase p: every factor-th tap from p on.
constexpr float Coefficient(unsigned factor, unsigned phase, int slot) {
  const int t = static_cast<int>(factor) * slot + static_cast<int>(phase);
  return static_cast<float>(Tap(factor, t)) / 32768.0f;
}

}  // namespace reference

#endif
