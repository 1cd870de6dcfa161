// Kernels over counted vectors, and reductions.
#include "fingerprints/entries.h"
#include "fingerprints/kernel_calls.h"

namespace testing_support {
namespace {

// Every remainder by 16, and some groups of 32.
constexpr uint32_t kCounts[] = {0,  1,  2,  3,  4,  5,  6,  7,  8,  9,  10, 11, 12, 13,
                                14, 15, 16, 17, 20, 24, 31, 32, 33, 40, 63, 64, 67};
const CallPlan kVectors = {
    .materials = kValues, .last = kCounts, .counts = true, .floats = CallArguments::kMostFloats};
static_assert(CallArguments::kMostFloats >= 7 * 2 * 68, "seven planes of the largest count");

#define TWIN(name) MVK_TWIN_ENTRIES(name, kVectors)

}  // namespace

void ListVectorKernels(Entries &entries) {
  TWIN(vec_Labs_maxLU)
  TWIN(vec_Sabs_maxSU)
  TWIN(vec_UnormLU)
  TWIN(vec_UnormSU)
  TWIN(vec_LdotLLU)
  TWIN(vec_NdotLLU)
  TWIN(vec_Lmean_sqrLU)
  TWIN(vec_Lsum_sqrLUU)
  TWIN(vec_LshlLIU)
  TWIN(vec_LshlLIU_inplace)
  TWIN(vec_SshlSIU_inplace)
  TWIN(vec_LmpyLSU)
  TWIN(vec_LmpyLSU_inplace)
  TWIN(vec_LmaskLSU)
  TWIN(vec_Lmask_rev_coefLSU)
  TWIN(vec_LsetLU)
  TWIN(vec_IeqLLU)
  TWIN(CLaddCLCLU)
  TWIN(CLsubCLCLU)
  TWIN(CLcopyCLU)
  TWIN(CLzeroCLU)
  TWIN(CLmpyCLCSU)
  TWIN(CLmpyCLSU)
  TWIN(CLmpyCLVSU)
  TWIN(CLmpy_shlCLSIU)
  TWIN(CLmpy_shlCLSIU_inplace)
  TWIN(CLmacCLCLU)
  TWIN(CLmacCLLU)
  TWIN(CLmixCLCLSSU)
  TWIN(CLdivCLCLU)
  TWIN(CLrecipCLUU)
  TWIN(CLmpy_recipCLLIU)
  TWIN(CLshlCLUU)
  TWIN(CLshrCLUU)
  TWIN(VLsquaredmagCLIU)
  TWIN(cvec_Lmpy_conjLLIU)
  TWIN(CLmix4CL4SU)
  TWIN(CLCLmix4CL8SU)
  TWIN(CLCLmix6CL12SU)
  TWIN(CLCLmix7CL14SU)
}

}  // namespace testing_support
