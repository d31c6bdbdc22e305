#include "strokes/path/interpolate_2d.h"

namespace brushwork {

Interpolate2D::~Interpolate2D() = default;

}  // namespace brushwork
