// The radices of each length, in the order of the passes.
#pragma once

#include <cstddef>

namespace mvk {

// radix4's twiddles of composite lengths are coarse, those of powers of two fine; radix8 goes
// by its own radices and is fine throughout.
enum class family { radix4, radix8 };

struct radices {
  int length;
  int count;
  int of[6];
};

inline constexpr radices radix4_radices[] = {
    {12, 2, {4, 3}},
    {15, 2, {5, 3}},
    {16, 2, {4, 4}},
    {20, 2, {4, 5}},
    {24, 2, {8, 3}},
    {30, 2, {6, 5}},
    {32, 2, {8, 4}},
    {36, 3, {4, 3, 3}},
    {40, 2, {8, 5}},
    {45, 3, {5, 3, 3}},
    {48, 3, {4, 3, 4}},
    {60, 3, {4, 5, 3}},
    {64, 3, {4, 4, 4}},
    {72, 3, {8, 3, 3}},
    {80, 3, {4, 4, 5}},
    {90, 3, {6, 3, 5}},
    {96, 3, {8, 3, 4}},
    {120, 3, {8, 3, 5}},
    {128, 3, {8, 4, 4}},
    {144, 4, {4, 3, 3, 4}},
    {160, 3, {8, 4, 5}},
    {180, 4, {4, 3, 3, 5}},
    {192, 4, {4, 4, 4, 3}},
    {240, 4, {4, 3, 4, 5}},
    {256, 4, {4, 4, 4, 4}},
    {288, 4, {8, 3, 3, 4}},
    {320, 4, {4, 4, 4, 5}},
    {360, 4, {8, 3, 3, 5}},
    {384, 4, {8, 3, 4, 4}},
    {480, 4, {8, 3, 4, 5}},
    {512, 4, {8, 4, 4, 4}},
    {576, 5, {4, 3, 3, 4, 4}},
    {640, 4, {8, 4, 4, 5}},
    {720, 5, {4, 3, 3, 4, 5}},
    {768, 5, {4, 4, 4, 4, 3}},
    {960, 5, {4, 3, 4, 4, 5}},
    {1024, 5, {4, 4, 4, 4, 4}},
    {2048, 5, {8, 4, 4, 4, 4}},
    {4096, 6, {4, 4, 4, 4, 4, 4}},
};

inline constexpr radices radix8_radices[] = {
    {64, 2, {8, 8}},         {128, 3, {8, 4, 4}},     {144, 3, {8, 6, 3}},
    {192, 3, {8, 3, 8}},     {240, 3, {8, 6, 5}},     {256, 3, {8, 8, 4}},
    {320, 3, {8, 5, 8}},     {384, 3, {8, 6, 8}},     {512, 3, {8, 8, 8}},
    {576, 4, {8, 3, 3, 8}},  {720, 4, {8, 3, 6, 5}},  {768, 4, {8, 8, 3, 4}},
    {960, 4, {8, 8, 3, 5}},  {1024, 4, {8, 8, 4, 4}}, {2048, 4, {8, 8, 8, 4}},
    {4096, 4, {8, 8, 8, 8}},
};

template <std::size_t n>
constexpr radices find_radices(const radices (&all)[n], int length) {
  std::size_t i = 0;
  while (all[i].length != length) ++i;
  return all[i];
}

}  // namespace mvk
