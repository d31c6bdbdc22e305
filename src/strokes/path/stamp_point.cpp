#include "brushwork/stamp_point.h"

namespace brushwork {

StrokePointData::~StrokePointData() = default;

}  // namespace brushwork
