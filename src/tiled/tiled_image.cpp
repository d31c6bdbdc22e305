#include "tiled/tiled_image.h"

#include <cstring>
#include <type_traits>
#include <utility>

namespace brushwork::znTiledImage {

Image::~Image() = default;

bool Image::setRect(const PixelRect& rect) {
    if (!container().setRect(rect)) return false;
    rect_ = rect;
    return true;
}

Ref<Image> Image::share() const {
    Ref<Image> copy = makeImage(pixelKind());
    if (!copy->setRect(rect_)) return nullptr;
    copy->setFillValue(constFillValue());
    for (std::size_t i = 0; i < constContainer().nodeCount(); ++i)
        copy->container().nodeAt(i)->tile = constContainer().constNodeAt(i)->tile;
    return copy;
}

template <class T>
TypedImage<T>::TypedImage() : container_(makeRef<TypedTileContainer<T>>()) {}

template <class T>
void TypedImage<T>::swap(Image& other) {
    if (other.pixelKind() != pixelKind()) return;
    auto& same = static_cast<TypedImage&>(other);
    std::swap(rect_, same.rect_);
    container_.swap(same.container_);
    std::swap(fill_, same.fill_);
}

template <class T>
PixelKind TypedImage<T>::pixelKind() const {
    return std::is_same_v<T, znImage::Byte4> ? PixelKind::Byte4 : PixelKind::Byte;
}

template <class T>
void TypedImage<T>::setFillValue(const void* pixel) {
    std::memcpy(&fill_, pixel, sizeof fill_);
}

template class TypedImage<unsigned char>;
template class TypedImage<znImage::Byte4>;

Ref<Image> makeImage(PixelKind kind) {
    if (kind == PixelKind::Byte4) return makeRef<TypedImage<znImage::Byte4>>();
    return makeRef<TypedImage<unsigned char>>();
}

Ref<Image> makeImage(std::int32_t channels) {
    if (channels != 1 && channels != 4) return nullptr;
    return makeImage(channels == 4 ? PixelKind::Byte4 : PixelKind::Byte);
}

}  // namespace brushwork::znTiledImage
