// Tables of a round tip's coverage by the distance from its middle, in sixteenths of a pixel.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace brushwork::npc {

// A bell curve over three and a half standard deviations, 1.0 as 65535.
class GaussianFalloffTable {
  public:
    static constexpr std::int32_t count = 11056;

    // Beyond the end the last entry goes on.
    [[nodiscard]] std::uint16_t at(std::int32_t index) const {
        return entries_[static_cast<std::size_t>(index < count ? index : count - 1)];
    }
    // Built on first use. Any thread.
    [[nodiscard]] static const GaussianFalloffTable& instance();

  private:
    GaussianFalloffTable();
    std::array<std::uint16_t, count> entries_;
};

// Of the 16 x 16 samples of a pixel whose middle lies d sixteenths from the stamp's: how many lie
// at each whole distance.
class CoverageHistogram {
  public:
    static constexpr std::int32_t rows = 32;
    static constexpr std::int32_t columns = 64;

    using Row = std::array<std::uint8_t, columns>;
    [[nodiscard]] const Row& row(std::int32_t d) const {
        return rows_[static_cast<std::size_t>(d)];
    }
    // Built on first use. Any thread.
    [[nodiscard]] static const CoverageHistogram& instance();

  private:
    CoverageHistogram();
    std::array<Row, rows> rows_{};
};

// What a mask is read from: entry min(trunc(16 d), last) at distance d.
struct CoverageProfile {
    const std::uint8_t* entries = nullptr;  // three bytes beyond `last` may be read, too
    std::int32_t last = 0;
    // Entries below `solidEnd` are 255, those from `emptyBegin` to `last` are 0.
    std::int32_t solidEnd = 0, emptyBegin = 1;
};

// The coverage of one radius and hardness; for small stamps also averaged over a pixel.
class StampMaskTable {
  public:
    static constexpr std::int32_t count = 11059;
    static constexpr std::int32_t filteredCount = 144;  // at least

    StampMaskTable();
    StampMaskTable(const StampMaskTable&) = delete;
    StampMaskTable& operator=(const StampMaskTable&) = delete;

    // Does nothing if the tables are those of this radius and hardness already. The radius is that
    // of a quantised stamp, the hardness the solid share of it.
    void build(float radius, float hardness);

    // For a stamp of these scales. One that is under 8 pixels both ways takes the averaged table.
    [[nodiscard]] const CoverageProfile& profileFor(float scaleX, float scaleY);

    // Both hold until the next build().
    [[nodiscard]] const CoverageProfile& plain() const { return plain_; }
    // Made on first use. It goes on until it is 0, however large the radius: a flat stamp of a
    // large one would have what stands at the end all over its box.
    [[nodiscard]] const CoverageProfile& filtered();

  private:
    void buildFiltered();

    static constexpr std::size_t slack = 16;
    std::vector<std::uint8_t> entries_;  // not moved again
    std::vector<std::uint8_t> filtered_;
    float radius_ = -1.0f, hardness_ = -1.0f;
    std::int32_t rim_ = 0;  // 16 * radius: the first entry that is 0 for good
    CoverageProfile plain_, filteredProfile_;
};

}  // namespace brushwork::npc
