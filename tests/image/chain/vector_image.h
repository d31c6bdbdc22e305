// A plain image over a vector of pixels, slow and obvious, for tests of what every image inherits.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <vector>

#include "image/chain/il_sid_image.h"

namespace brushwork::test {

class VectorImage : public ilSIDImage {
  public:
    static const inline ClassDescriptor descriptor = {"Vector", &ilSIDImage::descriptor};

    VectorImage(std::int32_t x, std::int32_t y, std::int32_t z, std::int32_t channels,
                std::int32_t type = TypeUChar, std::int32_t order = OrderInterleaved,
                std::int32_t space = SpaceLowerLeft) {
        sizeX_ = x;
        sizeY_ = y;
        sizeZ_ = z;
        channels_ = channels;
        dataType_ = type;
        order_ = order;
        coordSpace_ = space;
        colorModel_ = defaultColorModel(channels);
        maxParents_ = 2;
        pixels_.assign(static_cast<std::size_t>(x * y * z), ilPixel(type, channels));
        setAltered(AlteredPixels);
    }
    [[nodiscard]] const char* className() const override { return descriptor.name; }
    [[nodiscard]] const ClassDescriptor& classDescriptor() const override { return descriptor; }

    ilPixel& at(std::int32_t x, std::int32_t y, std::int32_t z = 0) {
        return pixels_[static_cast<std::size_t>((z * sizeY_ + y) * sizeX_ + x)];
    }

    std::int32_t readRegion(const ilTile& box, void* buffer, const ilTile& frame,
                            const ilImageConfig* config) override {
        ++reads;
        if (readFailsAtX == box.x) return ImageUnusable;
        auto* const bytes = static_cast<std::uint8_t*>(buffer);
        walk(box, frame, config,
             [&](const Element& e, std::int32_t x, std::int32_t y, std::int32_t z,
                 std::int32_t channel) {
                 const bool inside = isInside(x, y, z);
                 e.store(bytes, (inside ? at(x, y, z) : fill_).channel(channel));
             });
        return ImageOk;
    }
    std::int32_t writeRegion(const ilTile& box, const void* buffer, const ilTile& frame,
                             const ilImageConfig* config) override {
        const auto* const bytes = static_cast<const std::uint8_t*>(buffer);
        walk(box, frame, config,
             [&](const Element& e, std::int32_t x, std::int32_t y, std::int32_t z,
                 std::int32_t channel) {
                 if (isInside(x, y, z)) at(x, y, z).setChannel(channel, e.load(bytes));
             });
        return ImageOk;
    }
    std::int32_t pushToSource() override {
        ++pushes;
        return ImageOk;
    }

    void allow(std::uint32_t flags) { allowedFlags_ = flags; }
    void setPages(std::int32_t x, std::int32_t y, std::int32_t z, std::int32_t border) {
        pageX_ = x;
        pageY_ = y;
        pageZ_ = z;
        borderX_ = borderY_ = borderZ_ = border;
        if (sizeZ_ == 1) borderZ_ = 0;
        setDefaultPageSize(x, y, z, 0);
    }
    void reconcile() { reconcileColorModel(); }
    void chooseModel(bool spectral) { setDefaultColorModel(spectral); }
    void defaultLimits(bool forget) { setDefaultLimits(forget); }
    void makeChannels(std::int32_t count) { channels_ = count; }
    void makeModel(std::int32_t model) { colorModel_ = model; }

    int reads = 0;
    int pushes = 0;
    std::int32_t readFailsAtX = -1000;

  private:
    // Place of one channel value in a buffer.
    struct Element {
        std::int32_t type;
        std::size_t index;
        void store(std::uint8_t* bytes, double value) const {
            ilPixel pixel(type, type == TypeBit ? 8 : 1, place(bytes));
            pixel.setChannel(type == TypeBit ? static_cast<std::int32_t>(index % 8) : 0, value);
            std::memcpy(place(bytes), pixel.data(), type == TypeBit ? 1 : size());
        }
        [[nodiscard]] double load(const std::uint8_t* bytes) const {
            const ilPixel pixel(type, type == TypeBit ? 8 : 1, place(bytes));
            return pixel.channel(type == TypeBit ? static_cast<std::int32_t>(index % 8) : 0);
        }
        template <class T>
        [[nodiscard]] T* place(T* bytes) const {
            return bytes + (type == TypeBit ? index / 8 : index * size());
        }
        [[nodiscard]] std::size_t size() const { return dataTypeInfo(type).bytes; }
    };

    [[nodiscard]] bool isInside(std::int32_t x, std::int32_t y, std::int32_t z) const {
        return x >= 0 && y >= 0 && z >= 0 && x < sizeX_ && y < sizeY_ && z < sizeZ_;
    }
    template <class Visit>
    void walk(const ilTile& box, const ilTile& frame, const ilImageConfig* config, Visit visit) {
        const ilImageConfig full = completed(config);
        const ElementStrides strides =
            elementStrides(full.order, frame.nx, frame.ny * frame.nz, full.channels);
        const std::ptrdiff_t plane = strides.row * frame.ny;
        const ilTile area = intersection(box, frame);
        for (std::int32_t z = area.z; z < area.endZ(); ++z) {
            for (std::int32_t y = area.y; y < area.endY(); ++y) {
                for (std::int32_t x = area.x; x < area.endX(); ++x) {
                    for (std::int32_t c = 0; c < full.channels; ++c) {
                        const std::int32_t channel = full.channelAt(c);
                        if (channel < 0 || channel >= channels_) continue;
                        const std::ptrdiff_t index =
                            (z - frame.z) * plane + (y - frame.y) * strides.row +
                            (x - frame.x) * strides.pixel + c * strides.channel;
                        visit(Element{full.dataType, static_cast<std::size_t>(index)}, x, y, z,
                              channel);
                    }
                }
            }
        }
    }

    std::vector<ilPixel> pixels_;
};

}  // namespace brushwork::test
