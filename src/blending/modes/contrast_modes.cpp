#include "blending/modes/contrast_modes.h"

namespace brushwork::npc {

OverlayBlender::OverlayBlender() : FormulaBlender(BlendModeId::Overlay) {}
HardLightBlender::HardLightBlender() : FormulaBlender(BlendModeId::HardLight) {}
SoftLightBlender::SoftLightBlender() : FormulaBlender(BlendModeId::SoftLight) {}

}  // namespace brushwork::npc
