// The classes of blender::Base that take their formulas from the modes of npc::GenericBlender.
#pragma once

#include "blending/modes/contrast_formulas.h"
#include "blending/modes/dodge_burn_formulas.h"
#include "blending/modes/glow_formulas.h"
#include "blending/modes/hsl_formulas.h"
#include "blending/modes/light_formulas.h"
#include "blending/rows/image_blend.h"

// Expands X(name) once a class.
#define BRUSHWORK_ROW_MODES(X) \
    X(Multiply)                \
    X(Screen)                  \
    X(Add)                     \
    X(Lighten)                 \
    X(Darken)                  \
    X(ColorDodge)              \
    X(LinearBurn)              \
    X(ColorBurn)               \
    X(Overlay)                 \
    X(HardLight)               \
    X(SoftLight)               \
    X(Luminosity)              \
    X(Hue)                     \
    X(Color)                   \
    X(Saturation)              \
    X(Glow)                    \
    X(SoftGlow)

namespace brushwork::blender {

#define BRUSHWORK_ROW_MODE(name)                    \
    template <class D = std::uint32_t, class S = D> \
    using name = FormulaRows<npc::name##Formula, D, S>;
BRUSHWORK_ROW_MODES(BRUSHWORK_ROW_MODE)
#undef BRUSHWORK_ROW_MODE

// Two pixels of 32 bits are what the program uses; they are made once.
#define BRUSHWORK_ROW_MODE(name) extern template class FormulaRows<npc::name##Formula>;
BRUSHWORK_ROW_MODES(BRUSHWORK_ROW_MODE)
#undef BRUSHWORK_ROW_MODE

}  // namespace brushwork::blender
