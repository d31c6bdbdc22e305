// SmartAlpha: pixels whose colours exceed their alpha, which premultiplied pixels never do, and how
// they are repaired. Words of four channels, alpha in the highest byte.
#pragma once

#include <cstddef>
#include <cstdint>

namespace brushwork {

enum class AlphaFault : std::int32_t {
    None,     // no colour exceeds its alpha
    Slight,   // by less than 3
    Strong,   // by more, and there is alpha somewhere
    NoAlpha,  // by more, and alpha is 0 everywhere
};

enum class AlphaRepair : std::int32_t {
    None,
    Opaque,    // every alpha becomes 255
    Raise,     // an alpha below one of its colours becomes the largest of them
    Multiply,  // colours weren't multiplied by their alpha yet
};

struct SmartAlpha {
    // Widens what is known of some pixels by more of them.
    std::uint32_t excess = 0;  // largest of a colour over its alpha
    bool anyAlpha = false;
    void look(const std::uint8_t* pixels, std::size_t count);
    [[nodiscard]] AlphaFault fault() const;

    // What is to be done about pages of these many faults.
    [[nodiscard]] static AlphaRepair repairFor(std::size_t slight, std::size_t strong,
                                               std::size_t noAlpha);
    static void repair(std::uint8_t* pixels, std::size_t count, AlphaRepair repair);
    // Colours above their alpha come down to it: what filters with negative weights make.
    static void cut(std::uint8_t* pixels, std::size_t count);
};

}  // namespace brushwork
