#include "brushwork/brush_texture_parameters.h"

#include "image/chain/il_image.h"

namespace brushwork {

BrushTextureParameters::BrushTextureParameters() = default;
BrushTextureParameters::~BrushTextureParameters() = default;

}  // namespace brushwork
