#include "image/filter/fast_blur.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <exception>
#include <vector>

#include "foundation/services/vector_level.h"
#include "image/filter/blur_steps.h"
#include "image/filter/blur_windows.h"

namespace brushwork {
namespace {

// --- The definition.

// One line of bytes `step` apart.
void blurLine(const std::uint8_t* in, std::uint8_t* out, std::size_t step,
              const BlurWindows& windows) {
    const std::int64_t length = windows.length;
    std::uint64_t sum = 0;
    std::uint64_t count = 0;
    for (std::int64_t c = -(std::int64_t{windows.widest()} + 1); c < length; ++c) {
        for (const std::int32_t reach : windows.reach) {
            const std::int64_t lead = c + reach;
            if (lead < 0 || lead >= length) continue;
            sum += in[static_cast<std::size_t>(lead) * step];
            ++count;
        }
        if (c >= 0) {
            const std::uint64_t value = count != 0 ? sum / count : sum;
            out[static_cast<std::size_t>(c) * step] = static_cast<std::uint8_t>(value);
        }
        for (const std::int32_t reach : windows.reach) {
            const std::int64_t trail = c - reach;
            if (trail < 0 || trail >= length) continue;
            sum -= in[static_cast<std::size_t>(trail) * step];
            --count;
        }
    }
}

struct BlurJob {
    const std::uint8_t* source;
    std::uint8_t* target;
    std::size_t channels;
    std::size_t lanes;  // bytes of a row
    BlurWindows rows;
    BlurWindows columns;
};

void blurScalar(const BlurJob& job) {
    noteKernelForm(VectorLevel::Scalar);
    const auto height = static_cast<std::size_t>(job.columns.length);
    std::vector<std::uint8_t> between(job.lanes * height);
    for (std::size_t y = 0; y < height; ++y) {
        for (std::size_t channel = 0; channel < job.channels; ++channel) {
            const std::size_t first = y * job.lanes + channel;
            blurLine(job.source + first, between.data() + first, job.channels, job.rows);
        }
    }
    for (std::size_t lane = 0; lane < job.lanes; ++lane) {
        blurLine(between.data() + lane, job.target + lane, job.lanes, job.columns);
    }
}

// --- The vector forms.

constexpr std::int32_t stripRows = 8;     // rows that the columns go down at a time
constexpr std::size_t blockLanes = 4096;  // columns whose sums stay in the first-level cache

// Four rows of one byte a pixel as one of four bytes a pixel, and back.
void interleave(const std::uint8_t* const rows[4], std::uint8_t* out, std::size_t length) {
    for (std::size_t x = 0; x < length; ++x) {
        for (std::size_t row = 0; row < 4; ++row) out[x * 4 + row] = rows[row][x];
    }
}
void deinterleave(const std::uint8_t* in, std::uint8_t* const rows[4], std::size_t length) {
    for (std::size_t x = 0; x < length; ++x) {
        for (std::size_t row = 0; row < 4; ++row) rows[row][x] = in[x * 4 + row];
    }
}

// Blurred rows go into a ring that holds no more than the columns' windows need, so they are still
// in a near cache when the columns come for them. Rows of the source are only read before the
// target's row of the same place is written.
class StripBlur {
  public:
    StripBlur(const BlurJob& job, const BlurSteps& steps);
    void run();

  private:
    [[nodiscard]] std::uint8_t* ringRow(std::int32_t y) {
        return ring_.data() + static_cast<std::size_t>(y % ringRows_) * stride_;
    }
    // A blurred row; zeros outside the picture.
    [[nodiscard]] const std::uint8_t* rowOrZeros(std::int64_t y) {
        if (y < 0 || y >= height_) return zeros_.data();
        return ringRow(static_cast<std::int32_t>(y));
    }
    void blurRowsUpTo(std::int64_t end);
    void blurFourByteRows();
    void blurOneByteRows();
    [[nodiscard]] BlurColumns columnsAt(std::int64_t y);
    void enterFirstRows();
    void blurColumns(std::int32_t first, std::int32_t end);

    const BlurJob& job_;
    const BlurSteps& steps_;
    const std::int32_t height_;
    const std::size_t width_;
    const std::int32_t group_;  // rows blurred at once
    std::int32_t ready_ = 0;    // rows blurred so far
    std::vector<float> reciprocals_;
    std::size_t lead_;                          // bytes of zeros before a padded row
    std::vector<std::uint8_t> padded_[2];       // rows as BlurLines takes them
    std::vector<std::uint8_t> interleaved_[2];  // rows as it gives them
    std::int32_t ringRows_;
    std::size_t stride_;
    std::vector<std::uint8_t> ring_;
    std::vector<std::uint8_t> zeros_;
    std::vector<std::int32_t> sums_;
};

StripBlur::StripBlur(const BlurJob& job, const BlurSteps& steps)
    : job_(job),
      steps_(steps),
      height_(job.columns.length),
      width_(static_cast<std::size_t>(job.rows.length)),
      group_(job.channels == 4 ? 2 : 8),
      reciprocals_(blurReciprocals(job.rows, 4)),
      lead_((static_cast<std::size_t>(job.rows.widest()) + 1) * 4) {
    const std::size_t paddedBytes = 2 * lead_ + (width_ + 4) * 4;
    for (auto& row : padded_) row.resize(paddedBytes);
    for (auto& row : interleaved_) row.resize((width_ + 4) * 4);
    // An odd number of cache lines a row, so that rows don't fall on the same few sets.
    stride_ = ((job.lanes + 32 + 63) / 64 | 1) * 64;
    ringRows_ = 2 * job.columns.widest() + 1 + stripRows + group_;
    ring_.resize(static_cast<std::size_t>(ringRows_) * stride_);
    zeros_.resize(stride_);
    sums_.resize((job.lanes + 31) / 32 * 32);
}

void StripBlur::run() {
    enterFirstRows();
    for (std::int32_t y = 0; y < height_; y += stripRows) {
        const std::int32_t end = std::min(height_, y + stripRows);
        blurRowsUpTo(std::int64_t{end} + job_.columns.widest());
        blurColumns(y, end);
    }
}

void StripBlur::blurRowsUpTo(std::int64_t end) {
    while (ready_ < std::min<std::int64_t>(end, height_)) {
        if (job_.channels == 4) {
            blurFourByteRows();
        } else {
            blurOneByteRows();
        }
        ready_ += group_;
    }
}

void StripBlur::blurFourByteRows() {
    BlurLines lines{{}, {}, &job_.rows, reciprocals_.data()};
    for (std::size_t i = 0; i < 2; ++i) {
        const std::int32_t y = ready_ + static_cast<std::int32_t>(i);
        lines.in[i] = padded_[i].data() + lead_;
        lines.out[i] = interleaved_[i].data();
        if (y >= height_) continue;
        const auto offset = static_cast<std::size_t>(y) * job_.lanes;
        std::memcpy(padded_[i].data() + lead_, job_.source + offset, job_.lanes);
        lines.out[i] = ringRow(y);
    }
    steps_.lines(lines);
}

void StripBlur::blurOneByteRows() {
    BlurLines lines{{}, {}, &job_.rows, reciprocals_.data()};
    std::uint8_t* out[2][4];
    for (std::size_t i = 0; i < 2; ++i) {
        const std::uint8_t* in[4];
        for (std::size_t k = 0; k < 4; ++k) {
            // Behind the last row it is blurred again, into its own place.
            const auto y = std::min(height_ - 1, ready_ + static_cast<std::int32_t>(i * 4 + k));
            in[k] = job_.source + static_cast<std::size_t>(y) * job_.lanes;
            out[i][k] = ringRow(y);
        }
        interleave(in, padded_[i].data() + lead_, width_);
        lines.in[i] = padded_[i].data() + lead_;
        lines.out[i] = interleaved_[i].data();
    }
    steps_.lines(lines);
    for (std::size_t i = 0; i < 2; ++i) deinterleave(interleaved_[i].data(), out[i], width_);
}

BlurColumns StripBlur::columnsAt(std::int64_t y) {
    BlurColumns step;
    for (std::size_t k = 0; k < 4; ++k) {
        step.lead[k] = rowOrZeros(y + job_.columns.reach[k]);
        step.trail[k] = rowOrZeros(y - 1 - job_.columns.reach[k]);
    }
    return step;
}

void StripBlur::enterFirstRows() {
    const std::int32_t widest = job_.columns.widest();
    blurRowsUpTo(widest);
    for (std::int32_t y = -widest; y < 0; ++y) {
        BlurColumns step = columnsAt(y);
        step.sums = sums_.data();
        step.lanes = job_.lanes;
        steps_.columns(step);
    }
}

void StripBlur::blurColumns(std::int32_t first, std::int32_t end) {
    BlurColumns steps[stripRows];
    for (std::int32_t y = first; y < end; ++y) {
        steps[y - first] = columnsAt(y);
        steps[y - first].reciprocal = blurReciprocal(job_.columns.countAt(y));
    }
    for (std::size_t lane = 0; lane < job_.lanes; lane += blockLanes) {
        for (std::int32_t y = first; y < end; ++y) {
            BlurColumns step = steps[y - first];
            for (std::size_t k = 0; k < 4; ++k) {
                step.lead[k] += lane;
                step.trail[k] += lane;
            }
            step.sums = sums_.data() + lane;
            step.out = job_.target + static_cast<std::size_t>(y) * job_.lanes + lane;
            step.lanes = std::min(blockLanes, job_.lanes - lane);
            steps_.columns(step);
        }
    }
}

bool blur(const std::uint8_t* source, std::uint8_t* target, int width, int height, int size,
          std::size_t channels) noexcept {
    if (width < 1 || height < 1) return true;
    const BlurJob job{source,
                      target,
                      channels,
                      static_cast<std::size_t>(width) * channels,
                      blurWindows(width, size),
                      blurWindows(height, size)};
    const bool divides =
        std::max(job.rows.largestCount(), job.columns.largestCount()) <= blurReciprocalLimit;
    const VectorLevel level = divides ? vectorLevel() : VectorLevel::Scalar;
    try {
        if (level == VectorLevel::Scalar) {
            blurScalar(job);
        } else {
            StripBlur(job, level == VectorLevel::Avx2 ? blurStepsAvx2 : blurStepsSse2).run();
        }
    } catch (const std::exception&) {
        return false;
    }
    return true;
}

}  // namespace

bool fastBlur1(const std::uint8_t* source, std::uint8_t* target, int width, int height,
               int size) noexcept {
    return blur(source, target, width, height, size, 1);
}

bool fastBlur4(const std::uint8_t* source, std::uint8_t* target, int width, int height,
               int size) noexcept {
    return blur(source, target, width, height, size, 4);
}

}  // namespace brushwork
