#include "fingerprints/entries.h"

namespace testing_support {

std::span<const Group> Groups() {
  static constexpr Group kGroups[] = {
      {"BlockKernels", ListBlockKernels},
      {"VectorKernels", ListVectorKernels},
      {"Filters", ListFilters},
      {"Delays", ListDelays},
      {"Transforms", ListTransforms},
      {"TransformsByLength", ListTransformsByLength},
      {"CosineTransforms", ListCosineTransforms},
      {"Modulation", ListModulation},
      {"QmfBanks", ListQmfBanks},
      {"MfbBanks", ListMfbBanks},
      {"HybridBank", ListHybridBank},
      {"Limiter", ListLimiter},
      {"Resampler", ListResampler},
      {"Component", ListComponent},
      {"Services", ListServices},
      {"Tables", ListTables},
  };
  return kGroups;
}

}  // namespace testing_support
