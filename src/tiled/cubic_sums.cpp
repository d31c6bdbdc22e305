#include "tiled/cubic_sums.h"

namespace brushwork {

const CubicSums* cubicSums(VectorLevel level) {
    switch (level) {
        case VectorLevel::Avx2: return &cubicSumsAvx2;
        case VectorLevel::Sse2: return &cubicSumsSse2;
        default: return nullptr;
    }
}

}  // namespace brushwork
