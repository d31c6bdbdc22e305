// A mode whose result tells how often, and with which inputs, each pixel was blended.
#pragma once

#include <cstdint>

#include "blending/core/generic_blender.h"
#include "foundation/services/vector_level.h"

namespace brushwork::test {

// One byte of a target. Not the same twice over, and different for every input.
inline std::uint8_t recorded(int target, int source, int source2, int mask) {
    return static_cast<std::uint8_t>(target * 5 + source + source2 * 7 + mask * 3 + 1);
}
inline std::uint8_t recordedLow(int low, int high, int source) {
    return static_cast<std::uint8_t>(low * 3 + high + source * 9 + 2);
}
inline constexpr int noMask = 1000;
inline constexpr int noSource2 = 0;

class RecordingBlender : public npc::GenericBlender {
  public:
    RecordingBlender() : GenericBlender(-1) {
        skipEmpty_ = false;
        installKernels(true);
    }
    void setSkipEmpty(bool on) { skipEmpty_ = on; }
    void allowVectors(bool on) { installKernels(on); }

  protected:
    void installKernels(bool allowVector) override {
        GenericBlender::installKernels(allowVector);
        kernels_.rgba = kernels_.rgbaMasked = record<4, VectorLevel::Scalar>;
        kernels_.gray = kernels_.grayMasked = record<1, VectorLevel::Scalar>;
        kernels_.dualPlane = kernels_.dualPlaneMasked = record<4, VectorLevel::Scalar>;
        if (!allowVector || vectorLevel() == VectorLevel::Scalar) return;
        const bool wide = vectorLevel() == VectorLevel::Avx2;
        kernels_.rgbaVector = kernels_.rgbaMaskedVector = kernels_.dualPlaneVector =
            kernels_.dualPlaneMaskedVector =
                wide ? record<4, VectorLevel::Avx2> : record<4, VectorLevel::Sse2>;
        kernels_.grayVector = kernels_.grayMaskedVector =
            wide ? record<1, VectorLevel::Avx2> : record<1, VectorLevel::Sse2>;
    }

  private:
    template <std::size_t bytes, VectorLevel form>
    static void record(const GenericBlender&, const npc::KernelRow& row) {
        noteKernelForm(form);
        for (std::size_t n = 0; n < row.count; ++n) {
            // Eight of a constant, so that a vector finds them.
            const std::size_t s = row.sourceStride ? n : n % 8;
            const std::size_t m = row.maskStride ? n : n % 8;
            const int mask = row.mask ? row.mask[m] : noMask;
            for (std::size_t c = 0; c < bytes; ++c) {
                std::uint8_t& hi = row.hi[n * bytes + c];
                const int before = hi;
                const int source = row.source[s * bytes + c];
                hi = recorded(hi, source, row.source2 ? row.source2[s * bytes + c] : noSource2,
                              mask);
                if (row.lo)
                    row.lo[n * bytes + c] = recordedLow(row.lo[n * bytes + c], before, source);
            }
        }
    }
};

}  // namespace brushwork::test
