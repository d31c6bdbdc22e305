#include "blending/modes/clear_mode.h"

namespace brushwork::npc {

ClearBlender::ClearBlender() : FormulaBlender(BlendModeId::Clear) {}

}  // namespace brushwork::npc
