#include "image/chain/il_sid_image.h"

#include <atomic>

namespace brushwork {
namespace {

std::atomic<std::uint32_t> lastSerial{0};

}  // namespace

const ClassDescriptor ilSIDImage::descriptor = {"SID Image", &ilImage::descriptor};

ilSIDImage::ilSIDImage() : serial_(++lastSerial) {}

ilSIDImage::~ilSIDImage() {
    // Through volatile: written for those who look at the image after its end.
    *static_cast<volatile std::uint32_t*>(&signature_) = deadSignature;
    *static_cast<volatile std::uint32_t*>(&serial_) = 0;
}

const char* ilSIDImage::className() const {
    return descriptor.name;
}

const ClassDescriptor& ilSIDImage::classDescriptor() const {
    return descriptor;
}

void ilSIDImage::setSource(ilImage* image) {
    if (image == sourceImage_.get()) return;
    if (image && image->isKindOf(descriptor) == 0) return;
    sourceImage_ = Ref<ilSIDImage>(static_cast<ilSIDImage*>(image));
}

bool ilSIDImage::collapse() {
    const Ref<ilSIDImage> parent(source());
    if (!parent || !parent->isSigned()) return false;
    const Ref<ilSIDImage> grandparent(parent->source());
    if (!grandparent || !grandparent->isSigned()) return false;
    parent->pushToSource();
    setSource(grandparent.get());
    return true;
}

ilSIDImage* ilSIDImage::source() {
    return sourceImage_.get();
}

void ilSIDImage::bounds(ilTile& tile) {
    tile = box();
}

}  // namespace brushwork
