// Raises a constant by 2 through the resampler and prints what it settles at.
#include <orvane_resampler.h>

#include <cstdio>
#include <vector>

int main() {
  std::vector<char> arena(orvane_resampler_query(2, 1, 1));
  orvane_resampler *resampler = orvane_resampler_init(2, 1, 1, arena.data());
  std::vector<float> samples(128, 1.0f), result(RESAMP_PROCESSING_BLK_SIZE);
  void *from = samples.data(), *to = result.data();
  orvane_stream_desc in{1, 1, DT_LONG, &from}, out{1, 1, DT_LONG, &to};
  if (orvane_resampler_upsample(&out, &in, resampler) != result.size()) return 1;
  std::printf("Resampler %.14g %.14g\n", result[254], result[255]);
}
