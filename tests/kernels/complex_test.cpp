// Kernels of complex vectors.
#include <gtest/gtest.h>

#include "kernels/vector_rows.h"
#include "mvk_kernels.h"
#include "reference/complex_reference.h"
#include "reference/kernel_arithmetic.h"

namespace testing_support {
namespace {

using Call = const VectorCall &;
using reference::Complex;
using reference::PowerOfTwo;

Complex At(const float *p, uint32_t i) { return {p[2 * i], p[2 * i + 1]}; }

template <typename Element>
void Each(Call c, Element element) {
  for (uint32_t i = 0; i < c.n; ++i) {
    const Complex y = element(i);
    c.y[2 * i] = y.re;
    c.y[2 * i + 1] = y.im;
  }
}

const VectorKernel kComplexKernels[] = {
    {
        .name = "CLaddCLCLU",
        .flex = [](Call c) { return mvk_CLaddCLCLU_flex(c.y, c.a, c.b, c.n); },
        .strict = [](Call c) { return MVK_CLaddCLCLU_strict(c.y, c.a, c.b, c.n); },
        .oracle =
            [](Call c) {
              Each(c, [&](uint32_t i) { return reference::Add(At(c.a, i), At(c.b, i)); });
            },
        .y = Pairs,
        .a = Pairs,
        .b = Pairs,
        .over_a = true,
        .over_b = true,
    },
    {
        .name = "CLsubCLCLU",
        .flex = [](Call c) { return mvk_CLsubCLCLU_flex(c.y, c.a, c.b, c.n); },
        .strict = [](Call c) { return MVK_CLsubCLCLU_strict(c.y, c.a, c.b, c.n); },
        .oracle =
            [](Call c) {
              Each(c, [&](uint32_t i) { return reference::Sub(At(c.a, i), At(c.b, i)); });
            },
        .y = Pairs,
        .a = Pairs,
        .b = Pairs,
        .over_a = true,
        .over_b = true,
    },
    {
        .name = "CLcopyCLU",
        .flex = [](Call c) { return mvk_CLcopyCLU_flex(c.y, c.a, c.n); },
        .strict = [](Call c) { return MVK_CLcopyCLU_strict(c.y, c.a, c.n); },
        .oracle = [](Call c) { Each(c, [&](uint32_t i) { return At(c.a, i); }); },
        .y = Pairs,
        .a = Pairs,
        .over_a = true,
        .copies = true,
    },
    {
        .name = "CLzeroCLU",
        .flex = [](Call c) { return mvk_CLzeroCLU_flex(c.y, c.n); },
        .strict = [](Call c) { return MVK_CLzeroCLU_strict(c.y, c.n); },
        .oracle = [](Call c) { Each(c, [](uint32_t) {
                                 return Complex{0.0f, 0.0f};
                               }); },
        .y = Pairs,
        .copies = true,
    },
    {
        .name = "CLmpyCLCSU",
        .flex = [](Call c) { return mvk_CLmpyCLCSU_flex(c.y, c.a, c.b, c.n); },
        .strict = [](Call c) { return MVK_CLmpyCLCSU_strict(c.y, c.a, c.b, c.n); },
        .oracle =
            [](Call c) {
              Each(c, [&](uint32_t i) { return reference::Product(At(c.a, i), At(c.b, i)); });
            },
        .strict_oracle =
            [](Call c) {
              Each(c, [&](uint32_t i) { return reference::ProductStrict(At(c.a, i), At(c.b, i)); });
            },
        .y = Pairs,
        .a = Pairs,
        .b = Pairs,
        .over_a = true,
        .over_b = true,
    },
    {
        .name = "CLmpyCLSU",
        .flex = [](Call c) { return mvk_CLmpyCLSU_flex(c.y, c.a, c.s, c.n); },
        .strict = [](Call c) { return MVK_CLmpyCLSU_strict(c.y, c.a, c.s, c.n); },
        .oracle =
            [](Call c) { Each(c, [&](uint32_t i) { return reference::Times(At(c.a, i), c.s); }); },
        .y = Pairs,
        .a = Pairs,
        .over_a = true,
    },
    {
        .name = "CLmpyCLVSU",
        .flex = [](Call c) { return mvk_CLmpyCLVSU_flex(c.y, c.a, c.b, c.n); },
        .strict = [](Call c) { return MVK_CLmpyCLVSU_strict(c.y, c.a, c.b, c.n); },
        .oracle =
            [](Call c) {
              Each(c, [&](uint32_t i) { return reference::Times(At(c.a, i), c.b[i]); });
            },
        .y = Pairs,
        .a = Pairs,
        .b = Reals,
        .over_a = true,
    },
    {
        .name = "CLmpy_shlCLSIU",
        .flex = [](Call c) { return mvk_CLmpy_shlCLSIU_flex(c.y, c.a, c.s, c.k, c.n); },
        .strict = [](Call c) { return MVK_CLmpy_shlCLSIU_strict(c.y, c.a, c.s, c.k, c.n); },
        .oracle =
            [](Call c) {
              Each(c, [&](uint32_t i) {
                return reference::Times(At(c.a, i), c.s * PowerOfTwo(c.unsigned_k()));
              });
            },
        .y = Pairs,
        .a = Pairs,
        .over_a = true,
    },
    {
        .name = "CLmpy_shlCLSIU_inplace",
        .flex = [](Call c) { return mvk_CLmpy_shlCLSIU_inplace_flex(c.y, c.s, c.k, c.n); },
        .strict = [](Call c) { return MVK_CLmpy_shlCLSIU_inplace_strict(c.y, c.s, c.k, c.n); },
        .oracle =
            [](Call c) {
              Each(c, [&](uint32_t i) {
                return reference::Times(At(c.y, i), c.s * PowerOfTwo(c.unsigned_k()));
              });
            },
        .y = Pairs,
    },
    {
        .name = "CLmacCLCLU",
        .flex = [](Call c) { return mvk_CLmacCLCLU_flex(c.y, c.a, c.b, c.n); },
        .strict = [](Call c) { return MVK_CLmacCLCLU_strict(c.y, c.a, c.b, c.n); },
        .oracle =
            [](Call c) {
              Each(c, [&](uint32_t i) {
                return reference::Accumulated(At(c.y, i), At(c.a, i), At(c.b, i));
              });
            },
        .y = Pairs,
        .a = Pairs,
        .b = Pairs,
        .over_a = true,
        .over_b = true,
    },
    {
        .name = "CLmacCLLU",
        .flex = [](Call c) { return mvk_CLmacCLLU_flex(c.y, c.a, c.s, c.n); },
        .strict = [](Call c) { return MVK_CLmacCLLU_strict(c.y, c.a, c.s, c.n); },
        .oracle =
            [](Call c) {
              Each(c, [&](uint32_t i) {
                return reference::AccumulatedTimes(At(c.y, i), At(c.a, i), c.s);
              });
            },
        .y = Pairs,
        .a = Pairs,
        .over_a = true,
    },
    {
        .name = "CLmixCLCLSSU",
        .flex = [](Call c) { return mvk_CLmixCLCLSSU_flex(c.y, c.a, c.b, c.s, c.t, c.n); },
        .strict = [](Call c) { return MVK_CLmixCLCLSSU_strict(c.y, c.a, c.b, c.s, c.t, c.n); },
        .oracle =
            [](Call c) {
              Each(c, [&](uint32_t i) {
                return reference::MixOfTwo(At(c.a, i), At(c.b, i), c.s, c.t);
              });
            },
        .y = Pairs,
        .a = Pairs,
        .b = Pairs,
        .over_a = true,
        .over_b = true,
    },
    {
        .name = "CLdivCLCLU",
        .flex = [](Call c) { return mvk_CLdivCLCLU_flex(c.y, c.a, c.b, c.n); },
        .strict = [](Call c) { return MVK_CLdivCLCLU_strict(c.y, c.a, c.b, c.n); },
        .oracle =
            [](Call c) {
              Each(c, [&](uint32_t i) { return reference::Quotient(At(c.a, i), At(c.b, i)); });
            },
        .y = Pairs,
        .a = Pairs,
        .b = Pairs,
        .over_a = true,
        .over_b = true,
    },
    {
        .name = "CLrecipCLUU",
        .flex = [](Call c) { return mvk_CLrecipCLUU_flex(c.y, c.a, c.unsigned_k(), c.n); },
        .strict = [](Call c) { return MVK_CLrecipCLUU_strict(c.y, c.a, c.unsigned_k(), c.n); },
        .oracle =
            [](Call c) {
              Each(c, [&](uint32_t i) {
                return reference::Reciprocal(At(c.a, i), PowerOfTwo(0u - c.unsigned_k()));
              });
            },
        .y = Pairs,
        .a = Pairs,
        .over_a = true,
    },
    {
        .name = "CLmpy_recipCLLIU",
        .flex = [](Call c) { return mvk_CLmpy_recipCLLIU_flex(c.y, c.a, c.s, c.k, c.n); },
        .strict = [](Call c) { return MVK_CLmpy_recipCLLIU_strict(c.y, c.a, c.s, c.k, c.n); },
        .oracle =
            [](Call c) {
              Each(c, [&](uint32_t i) {
                return reference::Reciprocal(At(c.a, i), c.s * PowerOfTwo(c.unsigned_k()));
              });
            },
        .y = Pairs,
        .a = Pairs,
        .over_a = true,
    },
    {
        .name = "CLshlCLUU",
        .flex = [](Call c) { return mvk_CLshlCLUU_flex(c.y, c.a, c.unsigned_k(), c.n); },
        .strict = [](Call c) { return MVK_CLshlCLUU_strict(c.y, c.a, c.unsigned_k(), c.n); },
        .oracle =
            [](Call c) {
              Each(c, [&](uint32_t i) {
                return reference::Times(At(c.a, i), PowerOfTwo(c.unsigned_k()));
              });
            },
        .y = Pairs,
        .a = Pairs,
        .over_a = true,
    },
    {
        .name = "CLshrCLUU",
        .flex = [](Call c) { return mvk_CLshrCLUU_flex(c.y, c.a, c.unsigned_k(), c.n); },
        .strict = [](Call c) { return MVK_CLshrCLUU_strict(c.y, c.a, c.unsigned_k(), c.n); },
        .oracle =
            [](Call c) {
              Each(c, [&](uint32_t i) {
                return reference::Times(At(c.a, i), PowerOfTwo(0u - c.unsigned_k()));
              });
            },
        .y = Pairs,
        .a = Pairs,
        .over_a = true,
    },
    {
        .name = "VLsquaredmagCLIU",
        .flex = [](Call c) { return mvk_VLsquaredmagCLIU_flex(c.y, c.a, c.k, c.n); },
        .strict = [](Call c) { return MVK_VLsquaredmagCLIU_strict(c.y, c.a, c.k, c.n); },
        .oracle =
            [](Call c) {
              for (uint32_t i = 0; i < c.n; ++i)
                c.y[i] = reference::SquaredMagnitude(At(c.a, i), PowerOfTwo(c.unsigned_k()));
            },
        .a = Pairs,
        .over_a = true,
    },
    {
        .name = "cvec_Lmpy_conjLLIU",
        .flex = [](Call c) { return mvk_cvec_Lmpy_conjLLIU_flex(c.y, c.a, c.b, c.k, c.n); },
        .strict = [](Call c) { return MVK_cvec_Lmpy_conjLLIU_strict(c.y, c.a, c.b, c.k, c.n); },
        .oracle =
            [](Call c) {
              Each(c, [&](uint32_t i) {
                return reference::ConjugateProduct(At(c.a, i), At(c.b, i),
                                                   PowerOfTwo(c.unsigned_k()));
              });
            },
        .y = Pairs,
        .a = Pairs,
        .b = Pairs,
        .over_a = true,
        .over_b = true,
    },
};

TEST(ComplexKernels, TakeAnyCountAtAnyAlignment) {
  for (const VectorKernel &kernel : kComplexKernels) ExpectAnyCountAtAnyAlignment(kernel);
}

TEST(ComplexKernels, RoundAsDefinedInBothForms) {
  for (const VectorKernel &kernel : kComplexKernels) ExpectAnySamples(kernel);
}

TEST(ComplexKernels, MayBeWrittenOverTheirInputs) {
  for (const VectorKernel &kernel : kComplexKernels) ExpectResultsOverInputs(kernel);
}

TEST(ComplexKernels, KeepSpecialValuesToTheirPlace) {
  for (const VectorKernel &kernel : kComplexKernels) ExpectSpecialValuesAtEachPlace(kernel);
}

TEST(ComplexKernels, TakeSpecialScalars) {
  for (const VectorKernel &kernel : kComplexKernels) ExpectSpecialScalars(kernel);
}

TEST(ComplexKernels, BuildShiftsWithoutACheck) {
  for (const VectorKernel &kernel : kComplexKernels) ExpectAnyShift(kernel);
}

TEST(ComplexKernels, TouchNothingOutside) {
  for (const VectorKernel &kernel : kComplexKernels) ExpectNothingTouchedOutside(kernel);
}

}  // namespace
}  // namespace testing_support
