#include "blending/rows/image_blend_modes.h"

namespace brushwork::blender {

#define BRUSHWORK_ROW_MODE(name) template class FormulaRows<npc::name##Formula>;
BRUSHWORK_ROW_MODES(BRUSHWORK_ROW_MODE)
#undef BRUSHWORK_ROW_MODE

}  // namespace brushwork::blender
