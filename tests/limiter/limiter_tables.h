// The exported tables by the length of the sub-block.
#ifndef MVK_TESTS_LIMITER_LIMITER_TABLES_H_
#define MVK_TESTS_LIMITER_LIMITER_TABLES_H_

#include <span>

#include "orvane_ht_ztlim.h"
#include "reference/limiter_reference.h"

namespace testing_support {

// In the order of reference::kLimiterLengths.
struct ExportedTables {
  reference::LimiterLength length;
  std::span<const float> window;
  std::span<const orvane_ht_ztlim_coefs *const> coefs;
};

inline const ExportedTables kExportedTables[] = {
    {reference::kLimiterLengths[0], orvane_ht_a_ztlim_win_32, orvane_ht_ap_ztlim_coefs_32},
    {reference::kLimiterLengths[1], orvane_ht_a_ztlim_win_40, orvane_ht_ap_ztlim_coefs_40},
    {reference::kLimiterLengths[2], orvane_ht_a_ztlim_win_64, orvane_ht_ap_ztlim_coefs_64},
    {reference::kLimiterLengths[3], orvane_ht_a_ztlim_win_128, orvane_ht_ap_ztlim_coefs_128},
    {reference::kLimiterLengths[4], orvane_ht_a_ztlim_win_256, orvane_ht_ap_ztlim_coefs_256},
};

}  // namespace testing_support

#endif
