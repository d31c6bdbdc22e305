#include "image/work/sampling_tables.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <memory>
#include <new>

namespace brushwork {
namespace {

constexpr bool isMode(SampleMode mode) {
    return mode >= SampleMode::Nearest && mode <= SampleMode::Bicubic;
}
constexpr std::size_t indexOf(SampleMode mode) {
    return static_cast<std::size_t>(mode);
}

std::int32_t toIndex(float value) {
    if (!(value > -2147483648.0f)) return std::numeric_limits<std::int32_t>::min();
    if (value >= 2147483648.0f) return std::numeric_limits<std::int32_t>::max();
    return static_cast<std::int32_t>(value);
}

SamplePlace placeOf(std::int32_t index, float scale) {
    const float middle = (static_cast<float>(index) + 0.5f) / scale;
    const double steps = std::floor(static_cast<double>(middle - 0.5f) * 256.0 + 0.5);
    const auto place = static_cast<std::int64_t>(
        std::clamp(steps, -256.0, 256.0 * std::numeric_limits<std::int32_t>::max() - 1024.0));
    return {toIndex(std::floor(middle)), static_cast<std::int32_t>(place >> 8),
            static_cast<std::int32_t>(place & 0xFF)};
}

// The part of a box on one axis that is written.
struct Span {
    std::int32_t begin = 0, end = 0;  // in scaled pixels
    std::int32_t target = 0;          // where `begin` goes
    [[nodiscard]] std::int32_t count() const { return end - begin; }
};

Span cutSpan(std::int32_t start, std::int32_t extent, std::int32_t scaled, std::int32_t offset,
             std::int32_t targetExtent) {
    const std::int64_t shift = std::int64_t{offset} - start;  // from scaled pixels to the target's
    const std::int64_t begin = std::max({std::int64_t{0}, std::int64_t{start}, -shift});
    const std::int64_t end = std::min(
        {std::int64_t{scaled}, std::int64_t{start} + extent, std::int64_t{targetExtent} - shift});
    if (begin >= end) return {};
    return {static_cast<std::int32_t>(begin), static_cast<std::int32_t>(end),
            static_cast<std::int32_t>(begin + shift)};
}

struct ReadJob {
    const SampleSource& source;
    std::int32_t channels;
    const SamplePlace* columns;  // of the span, from its first on
    const SamplePlace* rows;
    Span x, y;
    std::uint8_t* out;  // the span's first pixel
    std::ptrdiff_t outRowBytes;

    [[nodiscard]] const std::uint8_t* sourceRow(std::int32_t row) const {
        return source.pixels + std::clamp(row, 0, source.height - 1) * source.rowBytes;
    }
};

template <std::size_t Channels>
void copyNearest(const ReadJob& job) {
    for (std::int32_t j = 0; j < job.y.count(); ++j) {
        const std::uint8_t* from = job.sourceRow(job.rows[j].nearest);
        std::uint8_t* to = job.out + j * job.outRowBytes;
        for (std::int32_t i = 0; i < job.x.count(); ++i, to += Channels) {
            const auto column = std::clamp(job.columns[i].nearest, 0, job.source.width - 1);
            std::memcpy(to, from + static_cast<std::size_t>(column) * Channels, Channels);
        }
    }
}

// The last four source rows that went through the first pass. Rows are asked for in ascending
// order, so that one of four places is always free.
class RowRing {
  public:
    RowRing(const ReadJob& job, ColumnPass pass)
        : job_(job),
          pass_(pass),
          rowValues_(
              (static_cast<std::size_t>(job.x.count()) * static_cast<std::size_t>(job.channels) +
               31) /
              32 * 32),
          values_(new (std::nothrow) std::int16_t[4 * rowValues_]) {
        columns_.places = job.columns;
        columns_.count = job.x.count();
        columns_.width = job.source.width;
        const auto reachesInside = [&](std::int32_t n) {
            return job.columns[n].lower >= 1 && job.columns[n].lower <= job.source.width - 3;
        };
        while (columns_.innerBegin < columns_.count && !reachesInside(columns_.innerBegin))
            ++columns_.innerBegin;
        columns_.innerEnd = columns_.innerBegin;
        while (columns_.innerEnd < columns_.count && reachesInside(columns_.innerEnd))
            ++columns_.innerEnd;
    }

    [[nodiscard]] bool isUsable() const { return values_ != nullptr; }

    const std::int16_t* row(std::int32_t index) {
        const std::int32_t inside = std::clamp(index, 0, job_.source.height - 1);
        const auto slot = static_cast<std::size_t>(inside) & 3;
        std::int16_t* values = values_.get() + slot * rowValues_;
        if (held_[slot] != inside) {
            columns_.row = job_.sourceRow(inside);
            columns_.out = values;
            pass_(columns_);
            held_[slot] = inside;
        }
        return values;
    }

  private:
    const ReadJob& job_;
    ColumnPass pass_;
    ColumnJob columns_;
    std::size_t rowValues_;
    std::unique_ptr<std::int16_t[]> values_;
    std::int32_t held_[4] = {-1, -1, -1, -1};
};

bool readMixed(const ReadJob& job, SampleMode modeX, SampleMode modeY) {
    const ScaledPasses& passes = scaledPasses();
    const std::size_t x = indexOf(modeX);
    const std::size_t y = indexOf(modeY);
    const bool cubic = modeX == SampleMode::Bicubic || modeY == SampleMode::Bicubic;
    const bool four = job.channels == 4;
    RowRing ring(job, cubic ? (four ? passes.cubicFour[x] : passes.cubicOne[x])
                            : (four ? passes.linearFour[x] : passes.linearOne[x]));
    if (!ring.isUsable()) return false;
    const RowPass mix = cubic ? passes.cubicRows[y] : passes.linearRows[y];
    RowJob row;
    row.values = static_cast<std::size_t>(job.x.count()) * static_cast<std::size_t>(job.channels);
    row.rounding = modeX == SampleMode::Bicubic ? roundingAfterCubic : roundingAfterOther;
    for (std::int32_t j = 0; j < job.y.count(); ++j) {
        const SamplePlace& place = job.rows[j];
        if (modeY == SampleMode::Nearest) {
            row.rows[0] = ring.row(place.nearest);
        } else {
            const bool wide = modeY == SampleMode::Bicubic;
            const std::int32_t first = place.lower - (wide ? 1 : 0);
            for (std::int32_t k = 0; k < (wide ? 4 : 2); ++k) row.rows[k] = ring.row(first + k);
        }
        row.step = place.step;
        row.out = job.out + j * job.outRowBytes;
        mix(row);
    }
    return true;
}

}  // namespace

bool SamplingTables::Axis::setScale(float value) {
    if (value == scale) return false;
    scale = value;
    std::vector<SamplePlace>().swap(places);
    return true;
}

const SamplePlace* SamplingTables::Axis::placesFor(std::int32_t begin, std::int32_t end) {
    const auto count = static_cast<std::size_t>(end - begin);
    const std::int64_t held =
        static_cast<std::int64_t>(first) + static_cast<std::int64_t>(places.size());
    if (places.empty() || begin < first || end > held) {
        places.resize(count);
        first = begin;
        for (std::size_t n = 0; n < count; ++n)
            places[n] = placeOf(begin + static_cast<std::int32_t>(n), scale);
    }
    return places.data() + (begin - first);
}

void SamplingTables::setScale(float x, float y) {
    const bool changedX = x_.setScale(x);
    const bool changedY = y_.setScale(y);
    if (changedX || changedY) dirty_ = true;
}

void SamplingTables::setModes(SampleMode x, SampleMode y) {
    x_.mode = x;
    y_.mode = y;
}

std::int32_t SamplingTables::scaledSize(std::int32_t size, float scale) {
    if (!(scale > 0.0f) || size < 1) return 0;
    return toIndex(std::floor(static_cast<float>(size) * scale + 0.5f));
}

bool SamplingTables::read(const SampleSource& source, std::int32_t channels,
                          const Rect<std::int32_t>& box, const ScaledTarget& target) {
    const auto isScale = [](float scale) { return scale > 0.0f && std::isfinite(scale); };
    if ((channels != 1 && channels != 4) || !isMode(x_.mode) || !isMode(y_.mode) ||
        !isScale(x_.scale) || !isScale(y_.scale) || !source.pixels || source.width < 1 ||
        source.height < 1)
        return false;
    const Span x =
        cutSpan(box.x, box.w, scaledSize(source.width, x_.scale), target.offsetX, target.width);
    const Span y =
        cutSpan(box.y, box.h, scaledSize(source.height, y_.scale), target.offsetY, target.height);
    if (x.count() < 1 || y.count() < 1) return true;
    try {
        const ReadJob job{source,
                          channels,
                          x_.placesFor(x.begin, x.end),
                          y_.placesFor(y.begin, y.end),
                          x,
                          y,
                          target.pixels + y.target * target.rowBytes +
                              static_cast<std::ptrdiff_t>(x.target) * channels,
                          target.rowBytes};
        dirty_ = false;
        if (x_.mode == SampleMode::Nearest && y_.mode == SampleMode::Nearest) {
            channels == 4 ? copyNearest<4>(job) : copyNearest<1>(job);
            return true;
        }
        return readMixed(job, x_.mode, y_.mode);
    } catch (const std::bad_alloc&) {
        return false;
    }
}

}  // namespace brushwork
