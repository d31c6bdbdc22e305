#include "tiled/bicubic_rows.h"

namespace brushwork {

const BicubicRows* bicubicRows(VectorLevel level) {
    return level == VectorLevel::Avx2 ? &bicubicRowsAvx2 : nullptr;
}

}  // namespace brushwork
