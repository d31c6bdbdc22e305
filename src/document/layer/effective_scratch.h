// The one image that effective images are drawn into.
#pragma once

#include "brushwork/ref.h"
#include "image/smart/il_smart_image.h"

namespace brushwork {

// A blank one of four channels; the former is gone but for who holds it. Document's thread only.
[[nodiscard]] Ref<ilSmartImage> newEffectiveScratch();
// That one in its place.
void setEffectiveScratch(const Ref<ilSmartImage>& image);
void dropEffectiveScratch();

}  // namespace brushwork
