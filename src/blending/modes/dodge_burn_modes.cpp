#include "blending/modes/dodge_burn_modes.h"

namespace brushwork::npc {

ColorDodgeBlender::ColorDodgeBlender() : FormulaBlender(BlendModeId::ColorDodge) {}
ColorBurnBlender::ColorBurnBlender() : FormulaBlender(BlendModeId::ColorBurn) {}
LinearBurnBlender::LinearBurnBlender() : FormulaBlender(BlendModeId::LinearBurn) {}

}  // namespace brushwork::npc
