#include "document/layer/effective_scratch.h"

namespace brushwork {
namespace {

Ref<ilSmartImage>& scratch() {
    static Ref<ilSmartImage> shared;
    return shared;
}

}  // namespace

Ref<ilSmartImage> newEffectiveScratch() {
    scratch() = Ref<ilSmartImage>(new ilSmartImage(ilPixel(TypeUChar, 4)));
    return scratch();
}

void setEffectiveScratch(const Ref<ilSmartImage>& image) {
    scratch() = image;
}

void dropEffectiveScratch() {
    scratch().reset();
}

}  // namespace brushwork
