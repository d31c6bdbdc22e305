#include "blending/modes/glow_modes.h"

namespace brushwork::npc {

GlowBlender::GlowBlender() : FormulaBlender(BlendModeId::Glow) {}
SoftGlowBlender::SoftGlowBlender() : FormulaBlender(BlendModeId::SoftGlow) {}

}  // namespace brushwork::npc
