#include "tiled/bilinear_rows.h"

namespace brushwork {

const BilinearRows* bilinearRows(VectorLevel level) {
    switch (level) {
        case VectorLevel::Avx2: return &bilinearRowsAvx2;
        case VectorLevel::Sse2: return &bilinearRowsSse2;
        default: return nullptr;
    }
}

}  // namespace brushwork
