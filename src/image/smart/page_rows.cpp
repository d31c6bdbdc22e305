#include "image/smart/page_rows.h"

#include <cstddef>
#include <cstring>

namespace brushwork {
namespace {

std::size_t placeIn(const ilTile& frame, std::int32_t x, std::int32_t y, std::int32_t z) {
    const auto row = static_cast<std::size_t>(z - frame.z) * static_cast<std::size_t>(frame.ny) +
                     static_cast<std::size_t>(y - frame.y);
    return row * static_cast<std::size_t>(frame.nx) + static_cast<std::size_t>(x - frame.x);
}

void fillRow(std::uint8_t* row, std::size_t pixels, std::uint8_t shift, std::uint32_t value) {
    if (shift == 0) {
        std::memset(row, static_cast<std::uint8_t>(value), pixels);
        return;
    }
    for (std::size_t n = 0; n < pixels; ++n, row += sizeof value)
        std::memcpy(row, &value, sizeof value);
}

}  // namespace

void fillBufferRows(std::uint8_t shift, std::uint32_t value, const ilTile& box, void* buffer,
                    const ilTile& frame) {
    auto* const bytes = static_cast<std::uint8_t*>(buffer);
    for (std::int32_t z = box.z; z < box.endZ(); ++z)
        for (std::int32_t y = box.y; y < box.endY(); ++y)
            fillRow(bytes + (placeIn(frame, box.x, y, z) << shift),
                    static_cast<std::size_t>(box.nx), shift, value);
}

void readPageRows(const PagePlace& place, const ilTile& box, void* buffer, const ilTile& frame) {
    const std::uint8_t shift = place.page.shift;
    if (!place.page.inMemory()) {
        fillBufferRows(shift, place.page.solid, box, buffer, frame);
        return;
    }
    auto* const bytes = static_cast<std::uint8_t*>(buffer);
    const std::size_t rowBytes = static_cast<std::size_t>(box.nx) << shift;
    for (std::int32_t y = box.y; y < box.endY(); ++y)
        std::memcpy(bytes + (placeIn(frame, box.x, y, 0) << shift), place.at(box.x, y), rowBytes);
}

void writePageRows(const PagePlace& place, const ilTile& box, const void* buffer,
                   const ilTile& frame) {
    const auto* const bytes = static_cast<const std::uint8_t*>(buffer);
    const std::uint8_t shift = place.page.shift;
    const std::size_t rowBytes = static_cast<std::size_t>(box.nx) << shift;
    for (std::int32_t y = box.y; y < box.endY(); ++y)
        std::memcpy(place.at(box.x, y), bytes + (placeIn(frame, box.x, y, 0) << shift), rowBytes);
}

void fillPageRows(const PagePlace& place, const ilTile& box, std::uint32_t value) {
    for (std::int32_t y = box.y; y < box.endY(); ++y)
        fillRow(place.at(box.x, y), static_cast<std::size_t>(box.nx), place.page.shift, value);
}

}  // namespace brushwork
