// The limiter's windows and time constants, by the length of a sub-block.
#include <algorithm>
#include <cstdint>
#include <iterator>

#include "core/tables.h"
#include "limiter/state.h"

using namespace mvk;

// ---- Windows ------------------------------------------------------------------

namespace {

template <int N>
consteval table<N> rising_window() {
  return make_table<N>([](int i) {
    const double s = sin_pi(2 * i + 1, 4 * N);
    return std::min(to_q15(s * s), q15(32767));
  });
}

}  // namespace

MVK_EXPORT_TABLE(orvane_ht_a_ztlim_win_32, 32, rising_window<32>());
MVK_EXPORT_TABLE(orvane_ht_a_ztlim_win_40, 40, rising_window<40>());
MVK_EXPORT_TABLE(orvane_ht_a_ztlim_win_64, 64, rising_window<64>());
MVK_EXPORT_TABLE(orvane_ht_a_ztlim_win_128, 128, rising_window<128>());
MVK_EXPORT_TABLE(orvane_ht_a_ztlim_win_256, 256, rising_window<256>());

// ---- Time constants -----------------------------------------------------------

namespace {

// What is left of a decay after one update, of `rate` in a second.
constexpr float decay(double half_life_ms, double rate) {
  return to_q15(exp2_negative(1000 / (half_life_ms * rate)));
}

constexpr orvane_ht_ztlim_coefs with_steps(float slow, float recover, float release, float half) {
  return {slow, 1 - slow, recover, 1 - recover, release, half, {}};
}

constexpr orvane_ht_ztlim_coefs from_half_lives(double rate) {
  return with_steps(decay(40, rate), decay(160, rate), decay(5, rate), decay(10, rate));
}

// Tuned by a unit or two beside what its half-lives would give.
constexpr double tuned_rate = 2756.25;
constexpr auto tuned = with_steps(q15(32562), q15(32716), q15(31159), q15(31953));

constexpr int num_sample_rates = 9;
constexpr std::uint32_t sample_rates[num_sample_rates] = {192000, 176400, 96000, 88200, 64000,
                                                          48000,  44100,  32000, 24000};

constexpr double update_rates[] = {6000, 5512.5, 4800, 4410,     3000,     tuned_rate, 2400,
                                   2205, 2000,   1600, 1500,     1378.125, 1200,       1102.5,
                                   1000, 800,    750,  689.0625, 600,      500,        375};
constexpr int num_update_rates = std::size(update_rates);

struct coefs_rows {
  orvane_ht_ztlim_coefs row[num_update_rates];
};

constexpr coefs_rows rows = [] {
  coefs_rows all{};
  for (int i = 0; i < num_update_rates; ++i)
    all.row[i] = update_rates[i] == tuned_rate ? tuned : from_half_lives(update_rates[i]);
  return all;
}();

// The record for sample rate `index` at sub-blocks of `frames`: null where the gain
// would be updated less often than there are time constants for.
constexpr const orvane_ht_ztlim_coefs *row_for(int index, int frames) {
  const double rate = static_cast<double>(sample_rates[index]) / frames;
  for (int i = 0; i < num_update_rates; ++i)
    if (update_rates[i] == rate) return &rows.row[i];
  return nullptr;
}

}  // namespace

#define MVK_COEFS(n)                                                              \
  constinit const orvane_ht_ztlim_coefs *const orvane_ht_ap_ztlim_coefs_##n[] = { \
      row_for(0, n), row_for(1, n), row_for(2, n), row_for(3, n), row_for(4, n),  \
      row_for(5, n), row_for(6, n), row_for(7, n), row_for(8, n)}
MVK_COEFS(32);
MVK_COEFS(40);
MVK_COEFS(64);
MVK_COEFS(128);
MVK_COEFS(256);

// ---- By length ----------------------------------------------------------------

namespace {

constexpr sub_block_form forms[] = {
    {32, 3, orvane_ht_a_ztlim_win_32, orvane_ht_ap_ztlim_coefs_32},
    {40, 2, orvane_ht_a_ztlim_win_40, orvane_ht_ap_ztlim_coefs_40},
    {64, 1, orvane_ht_a_ztlim_win_64, orvane_ht_ap_ztlim_coefs_64},
    {128, 1, orvane_ht_a_ztlim_win_128, orvane_ht_ap_ztlim_coefs_128},
    {256, 1, orvane_ht_a_ztlim_win_256, orvane_ht_ap_ztlim_coefs_256},
};

}  // namespace

const sub_block_form *mvk::find_form(std::uint32_t sub_block) {
  for (const sub_block_form &form : forms)
    if (form.frames == sub_block) return &form;
  return nullptr;
}

const orvane_ht_ztlim_coefs *mvk::find_coefs(const sub_block_form &form,
                                             std::uint32_t sample_rate) {
  for (int i = 0; i < num_sample_rates; ++i)
    if (sample_rates[i] == sample_rate) return form.coefs[i];
  return nullptr;
}
