// MultiTransform: several layers that are transformed as one.
#pragma once

#include <cstdint>
#include <vector>

#include "brushwork/transform_record.h"

namespace brushwork {

struct MultiTransform {
    bool open = false;
    bool keep = false;
    float pivotX = 0.0f, pivotY = 0.0f;
    bool pivotSet = false;
    std::int32_t operand = 0;  // not 0: no fast preview
    std::vector<std::int32_t> ids;
    TransformRecord record;  // as last shown
};

}  // namespace brushwork
