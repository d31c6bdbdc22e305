#include "tiled/bicubic_rows.h"

namespace brushwork {

const BicubicRows* bicubicRows(VectorLevel level) {
    switch (level) {
        case VectorLevel::Avx2: return &bicubicRowsAvx2;
        case VectorLevel::Sse2: return &bicubicRowsSse2;
        default: return nullptr;
    }
}

}  // namespace brushwork
