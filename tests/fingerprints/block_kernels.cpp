// Kernels over blocks of 32 samples, but those with a memory.
#include "fingerprints/entries.h"
#include "fingerprints/kernel_calls.h"

namespace testing_support {
namespace {

const CallPlan kBlocks = {.materials = kValues, .last = kShifts, .floats = 40};

#define TWIN(name) MVK_TWIN_ENTRIES(name, kBlocks)

// Any number of blocks, one behind the other.
constexpr uint32_t kBlockCounts[] = {1, 2, 3, 4, 5, 6, 7, 8, 9};
const CallPlan kManyBlocks = {.materials = kValues, .last = kBlockCounts, .floats = 9 * kBlockSize};

#define NINE_BLOCKS                                                                        \
  blocks, blocks + 32, blocks + 64, blocks + 96, blocks + 128, blocks + 160, blocks + 192, \
      blocks + 224, blocks + 256

#define MANY(function, aligned, parameters, ...)                                         \
  MVK_ENTRY(function, [](Digest &digest) {                                               \
    AddCalls(                                                                            \
        digest, kManyBlocks, aligned, +[] parameters { return function(__VA_ARGS__); }); \
  });
#define MIX(function, aligned)                                                                  \
  MANY(function, aligned, (float *y, const float *g, const float *blocks, uint32_t n), y, g, n, \
       NINE_BLOCKS)
#define MIX_SHIFTED(function, aligned)                                                             \
  MANY(function, aligned, (float *y, const float *g, const float *blocks, uint32_t k, uint32_t n), \
       y, g, k, n, NINE_BLOCKS)
#define MIX_ARRAY(function, aligned)                                                               \
  MANY(function, aligned, (float *y, const float *g, const float *blocks, uint32_t k, uint32_t n), \
       y, g, n, blocks, k)

}  // namespace

void ListBlockKernels(Entries &entries) {
  TWIN(BLmaxBLL)
  TWIN(BLmaxBLL_inplace)
  TWIN(BLmpyBLS_inplace)
  TWIN(BLmpy_scaleBLSU)
  TWIN(BLmpy_scaleBLSU_inplace)
  TWIN(BLmpy_scale_xBLSU)
  TWIN(BLsaddBLL)
  TWIN(blk_LmixL)
  TWIN(blk_LmixLL)
  TWIN(blk_LmixLLL)
  TWIN(blk_LmixLLLL)
  TWIN(blk_Lmix_shlUL)
  TWIN(blk_Lmix_shlULL)
  TWIN(blk_Lmix_shlULLL)
  TWIN(blk_Lmix_shlULLLL)
  TWIN(blk_Lmpy_shlLLU)
  TWIN(blk_Lmpy_shlLSU)
  TWIN(blk_LLshuffleLL_inplace)
  TWIN(blk_LLdeshuffleLL_inplace)
  TWIN(blk_Lconst)
  TWIN(blk_LabsL)
  TWIN(blk_LclipL)
  TWIN(blk_LcmpLL)
  TWIN(blk_LmaxLL)
  TWIN(blk_LmaxLLL)
  TWIN(blk_LminLL)
  TWIN(blk_LminLLL)
  TWIN(blk_LsaddLL)
  TWIN(blk_LsubLL)
  MIX(MVK_blk_LmixnL, false)
  MIX(MVK_blk_LmixnL_strict, true)
  MIX_SHIFTED(MVK_blk_Lmix_shlUnL, false)
  MIX_SHIFTED(MVK_blk_Lmix_shlUnL_strict, true)
  MIX_ARRAY(MVK_blk_Lmix_shlaL, false)
  MIX_ARRAY(MVK_blk_Lmix_shlaL_strict, true)
}

}  // namespace testing_support
