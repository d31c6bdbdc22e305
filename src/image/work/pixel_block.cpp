#include "image/work/pixel_block.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <limits>
#include <type_traits>
#include <utility>

#include "image/chain/coord_space.h"

namespace brushwork {
namespace {

// A value of TypeBit.
struct Bit {
    std::uint8_t value;
};

template <class T>
T loadAt(const std::uint8_t* data, std::ptrdiff_t index) {
    if constexpr (std::is_same_v<T, Bit>) {
        return {static_cast<std::uint8_t>((data[index >> 3] >> (7 - (index & 7))) & 1)};
    } else {
        T value;
        std::memcpy(&value, data + index * static_cast<std::ptrdiff_t>(sizeof(T)), sizeof(T));
        return value;
    }
}

template <class T>
void storeAt(std::uint8_t* data, std::ptrdiff_t index, T value) {
    if constexpr (std::is_same_v<T, Bit>) {
        const int shift = 7 - static_cast<int>(index & 7);
        std::uint8_t& byte = data[index >> 3];
        byte = static_cast<std::uint8_t>((byte & ~(1 << shift)) | (value.value << shift));
    } else {
        std::memcpy(data + index * static_cast<std::ptrdiff_t>(sizeof(T)), &value, sizeof(T));
    }
}

template <class T>
struct Limits {
    static constexpr double least = static_cast<double>(std::numeric_limits<T>::lowest());
    static constexpr double most = static_cast<double>(std::numeric_limits<T>::max());
};
template <>
struct Limits<Bit> {
    static constexpr double least = 0.0;
    static constexpr double most = 1.0;
};

// Every type's values are exact in double, so one way through double serves all pairs.
template <class To, class From>
To converted(From value) {
    if constexpr (std::is_same_v<To, From>) {
        return value;
    } else {
        double wide;
        if constexpr (std::is_same_v<From, Bit>)
            wide = value.value;
        else
            wide = static_cast<double>(value);
        if constexpr (std::is_floating_point_v<To>) {
            if (!std::isfinite(wide)) return static_cast<To>(wide);
        }
        if (std::isnan(wide)) wide = 0.0;
        wide = std::clamp(wide, Limits<To>::least, Limits<To>::most);
        if constexpr (std::is_same_v<To, Bit>)
            return {static_cast<std::uint8_t>(wide)};
        else
            return static_cast<To>(wide);
    }
}

// One channel of a row: `count` values at even distances.
struct Run {
    const std::uint8_t* source;
    std::ptrdiff_t from, fromStep;
    std::uint8_t* target;
    std::ptrdiff_t to, toStep;
    std::int32_t count;
};

template <class From, class To>
void convertRun(const Run& run) {
    std::ptrdiff_t from = run.from;
    std::ptrdiff_t to = run.to;
    for (std::int32_t n = 0; n < run.count; ++n, from += run.fromStep, to += run.toStep)
        storeAt(run.target, to, converted<To>(loadAt<From>(run.source, from)));
}

using RunKernel = void (*)(const Run&);
constexpr std::size_t typeCount = 9;

template <class From>
constexpr std::array<RunKernel, typeCount> kernelsFrom() {
    return {convertRun<From, Bit>,          convertRun<From, std::uint8_t>,
            convertRun<From, std::int8_t>,  convertRun<From, std::uint16_t>,
            convertRun<From, std::int16_t>, convertRun<From, std::uint32_t>,
            convertRun<From, std::int32_t>, convertRun<From, float>,
            convertRun<From, double>};
}
constexpr std::array<std::array<RunKernel, typeCount>, typeCount> kernels = {
    kernelsFrom<Bit>(),           kernelsFrom<std::uint8_t>(), kernelsFrom<std::int8_t>(),
    kernelsFrom<std::uint16_t>(), kernelsFrom<std::int16_t>(), kernelsFrom<std::uint32_t>(),
    kernelsFrom<std::int32_t>(),  kernelsFrom<float>(),        kernelsFrom<double>()};

// Position of a type among the nine; typeCount for anything else.
std::size_t typeIndex(std::int32_t type) {
    for (std::size_t n = 0; n < typeCount; ++n)
        if (type == 1 << n) return n;
    return typeCount;
}

RunKernel kernelFor(std::int32_t from, std::int32_t to) {
    const std::size_t row = typeIndex(from);
    const std::size_t column = typeIndex(to);
    return row < typeCount && column < typeCount ? kernels[row][column] : nullptr;
}

std::ptrdiff_t placeOf(const PixelBlock& block, std::int32_t x, std::int32_t y, std::int32_t z) {
    const std::ptrdiff_t dx = std::ptrdiff_t{x} - block.frame.x;
    const std::ptrdiff_t dy = std::ptrdiff_t{y} - block.frame.y;
    const std::ptrdiff_t dz = std::ptrdiff_t{z} - block.frame.z;
    return block.origin + dx * block.pixelStride + dy * block.rowStride + dz * block.planeStride;
}

// The source channel that feeds a target channel; -1 for none.
std::int32_t sourceChannel(const PixelBlock& source, const ChannelMap& map, std::int32_t channel) {
    const std::int32_t from = map.map ? map.map[channel] : channel;
    if (from < 0) return -1;
    if (source.constant) return std::min(from, source.channels - 1);
    return from < source.channels ? from : -1;
}

bool isIdentity(const PixelBlock& source, const PixelBlock& target, const ChannelMap& map) {
    if (source.channels != target.channels || map.count != target.channels) return false;
    for (std::int32_t n = 0; map.map && n < map.count; ++n)
        if (map.map[n] != n) return false;
    return true;
}

bool isDense(const PixelBlock& block) {
    return block.channelStride == 1 && block.pixelStride == block.channels;
}

// Whole pixels side by side in both blocks and nothing to convert: rows are copied as bytes.
bool copyRows(const PixelBlock& source, const PixelBlock& target, const ilTile& box,
              const ChannelMap& map) {
    if (source.constant || source.dataType != target.dataType || source.dataType == TypeBit ||
        !isIdentity(source, target, map) || !isDense(source) || !isDense(target))
        return false;
    const auto size = static_cast<std::ptrdiff_t>(dataTypeInfo(source.dataType).bytes);
    const auto bytes = static_cast<std::size_t>(box.nx * std::ptrdiff_t{source.channels} * size);
    for (std::int32_t z = box.z; z < box.endZ(); ++z)
        for (std::int32_t y = box.y; y < box.endY(); ++y)
            std::memmove(target.data + placeOf(target, box.x, y, z) * size,
                         source.data + placeOf(source, box.x, y, z) * size, bytes);
    return true;
}

bool isWord(const PixelBlock& block) {
    return block.dataType == TypeUChar && block.channels == 4 && isDense(block);
}

// Pixels of four bytes whose channels only change places.
bool reorderWords(const PixelBlock& source, const PixelBlock& target, const ilTile& box,
                  const ChannelMap& map) {
    if (source.constant || !map.map || map.count != 4 || !isWord(source) || !isWord(target))
        return false;
    std::array<std::int32_t, 4> from{};
    for (std::size_t n = 0; n < 4; ++n) {
        from[n] = map.map[n];
        if (from[n] < 0 || from[n] > 3) return false;
    }
    for (std::int32_t z = box.z; z < box.endZ(); ++z) {
        for (std::int32_t y = box.y; y < box.endY(); ++y) {
            const std::uint8_t* in = source.data + placeOf(source, box.x, y, z);
            std::uint8_t* out = target.data + placeOf(target, box.x, y, z);
            for (std::int32_t n = 0; n < box.nx; ++n, in += 4, out += 4) {
                const std::uint8_t pixel[4] = {in[from[0]], in[from[1]], in[from[2]], in[from[3]]};
                std::memcpy(out, pixel, 4);
            }
        }
    }
    return true;
}

// One pixel for all: the first row is built, the others are copies of it.
bool fillRows(const PixelBlock& source, const PixelBlock& target, const ilTile& box,
              const ChannelMap& map, RunKernel kernel) {
    if (!source.constant || target.dataType == TypeBit || !isDense(target) ||
        map.count != target.channels)
        return false;
    for (std::int32_t c = 0; map.map && c < map.count; ++c)
        if (map.map[c] < 0) return false;
    const auto size = static_cast<std::ptrdiff_t>(dataTypeInfo(target.dataType).bytes);
    const auto bytes = static_cast<std::size_t>(box.nx * std::ptrdiff_t{target.channels} * size);
    const std::ptrdiff_t first = placeOf(target, box.x, box.y, box.z);
    for (std::int32_t c = 0; c < map.count; ++c)
        kernel({source.data, sourceChannel(source, map, c), 0, target.data, first + c,
                target.pixelStride, box.nx});
    for (std::int32_t z = box.z; z < box.endZ(); ++z)
        for (std::int32_t y = box.y; y < box.endY(); ++y)
            if (y != box.y || z != box.z)
                std::memcpy(target.data + placeOf(target, box.x, y, z) * size,
                            target.data + first * size, bytes);
    return true;
}

void convertRuns(const PixelBlock& source, const PixelBlock& target, const ilTile& box,
                 const ChannelMap& map, RunKernel kernel) {
    for (std::int32_t c = 0; c < std::min(map.count, target.channels); ++c) {
        const std::int32_t from = sourceChannel(source, map, c);
        if (from < 0) continue;
        for (std::int32_t z = box.z; z < box.endZ(); ++z)
            for (std::int32_t y = box.y; y < box.endY(); ++y)
                kernel({source.data, placeOf(source, box.x, y, z) + from * source.channelStride,
                        source.pixelStride, target.data,
                        placeOf(target, box.x, y, z) + c * target.channelStride, target.pixelStride,
                        box.nx});
    }
}

}  // namespace

PixelBlock PixelBlock::packed(void* data, const ilTile& frame, std::int32_t type,
                              std::int32_t order, std::int32_t channels) {
    PixelBlock block;
    block.data = static_cast<std::uint8_t*>(data);
    block.dataType = type;
    block.order = order;
    block.channels = channels;
    block.frame = frame;
    const ElementStrides strides = elementStrides(order, frame.nx, frame.ny, channels);
    block.channelStride = strides.channel;
    block.pixelStride = strides.pixel;
    block.rowStride = strides.row;
    block.planeStride = std::ptrdiff_t{frame.nx} * frame.ny * channels;
    return block;
}

PixelBlock PixelBlock::ofConstant(const ilPixel& pixel, const ilTile& frame) {
    // What an untyped pixel or one without channels reads as.
    static const ilPixel nothing(TypeDouble, 1);
    const bool usable = pixel.channels() > 0 && typeIndex(pixel.type()) < typeCount;
    PixelBlock block;
    block.constant = usable ? &pixel : &nothing;
    // Only read from: a block is a target only where its memory may be written.
    block.data = const_cast<std::uint8_t*>(block.constant->data());
    block.dataType = block.constant->type();
    block.channels = block.constant->channels();
    block.frame = frame;
    block.channelStride = 1;
    return block;
}

PixelBlock PixelBlock::seenIn(std::int32_t space, std::int32_t ownSpace) const {
    if (space == ownSpace || space < SpaceUpperLeft || space > SpaceLeftLower) return *this;
    const Extent<std::int32_t> size{frame.nx, frame.ny};
    const auto placed = [&](std::int32_t x, std::int32_t y) {
        const auto p = mapPoint<std::int32_t>({x, y}, space, ownSpace, size);
        return origin + p.x * pixelStride + p.y * rowStride;
    };
    PixelBlock block = *this;
    if (isTransposed(space) != isTransposed(ownSpace)) std::swap(block.frame.nx, block.frame.ny);
    block.origin = placed(0, 0);
    block.pixelStride = placed(1, 0) - block.origin;
    block.rowStride = placed(0, 1) - block.origin;
    return block;
}

void convertBlock(const PixelBlock& source, const PixelBlock& target, const ilTile& box,
                  const ChannelMap& channels) {
    const ilTile inside = intersection(intersection(box, source.frame), target.frame);
    const RunKernel kernel = kernelFor(source.dataType, target.dataType);
    if (inside.isEmpty() || !kernel || !source.data || !target.data || target.constant) return;
    if (source.channels < 1 || channels.count < 1) return;
    if (copyRows(source, target, inside, channels)) return;
    if (reorderWords(source, target, inside, channels)) return;
    if (fillRows(source, target, inside, channels, kernel)) return;
    convertRuns(source, target, inside, channels, kernel);
}

}  // namespace brushwork
