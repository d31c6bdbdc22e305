#include "blending/modes/hsl_modes.h"

namespace brushwork::npc {

HueBlender::HueBlender() : FormulaBlender(BlendModeId::Hue) {}
SaturationBlender::SaturationBlender() : FormulaBlender(BlendModeId::Saturation) {}
ColorBlender::ColorBlender() : FormulaBlender(BlendModeId::Color) {}
LuminosityBlender::LuminosityBlender() : FormulaBlender(BlendModeId::Luminosity) {}

}  // namespace brushwork::npc
