#include "blending/paint/row_functions.h"

#include <algorithm>
#include <cstring>

#include "blending/core/byte_rows.h"
#include "blending/core/gray_rows.h"
#include "blending/modes/normal_formula.h"
#include "blending/paint/row_formulas.h"

namespace brushwork::paint {
namespace {

// Sources of these formulas are never written.
npc::KernelRow kernelRow(const PaintRow& row) {
    npc::KernelRow kernel;
    kernel.hi = row.target;
    kernel.source = const_cast<std::uint8_t*>(row.source);
    kernel.sourceStride = row.constantSource ? 0 : 1;
    kernel.count = row.count;
    return kernel;
}

template <class Formula>
void plainRow(const PaintRow& row) {
    if (row.count == 0) return;
    npc::blendByteRow(Formula(), kernelRow(row));
}

void overRow(const PaintRow& row) {
    if (row.count == 0) return;
    if (!row.constantSource)
        npc::blendByteRow(npc::RowNormalFormula<false>(), kernelRow(row));
    else if (!leavesTarget(pairOver, row.source, 4))
        npc::blendByteRow(npc::RowNormalFormula<true>(), kernelRow(row));
}

template <class Formula>
void coveredRow(const PaintRow& row) {
    if (row.count == 0) return;
    npc::KernelRow kernel = kernelRow(row);
    kernel.mask = row.coverage;
    kernel.maskStride = row.constantCoverage ? 0 : 1;
    npc::blendByteRow(Formula(), kernel);
}

template <class Formula>
void grayRow(const PaintRow& row) {
    if (row.count == 0) return;
    npc::blendGrayRow(Formula(), kernelRow(row));
}

void grayMixRow(const PaintRow& row) {
    if (row.count == 0) return;
    npc::KernelRow kernel = kernelRow(row);
    kernel.mask = row.coverage;
    kernel.maskStride = row.constantCoverage ? 0 : 1;
    npc::blendGrayRow(GrayMixFormula(), kernel);
}

// Draws the alpha of 4 channels into one.
template <class Formula>
void alphaRow(const PaintRow& row) {
    constexpr std::size_t run = 256;
    std::uint8_t alphas[run];
    PaintRow piece = row;
    piece.source = alphas;
    for (std::size_t i = 0; i < row.count; i += run) {
        piece.count = std::min(run, row.count - i);
        piece.target = row.target + i;
        const std::uint8_t* pixel = row.source + (row.constantSource ? 0 : 4 * i);
        const std::size_t pixels = row.constantSource ? 1 : piece.count;
        for (std::size_t n = 0; n < pixels; ++n) alphas[n] = pixel[4 * n + 3];
        grayRow<Formula>(piece);
    }
}

template <std::size_t channels>
void copyRow(const PaintRow& row) {
    if (row.count == 0) return;
    if (!row.constantSource) {
        std::memmove(row.target, row.source, channels * row.count);
        return;
    }
    for (std::size_t i = 0; i < row.count; ++i)
        std::memcpy(row.target + channels * i, row.source, channels);
}

struct Entry {
    BlendFactors factors;
    RowFunction function;
};

template <std::size_t count>
RowFunction find(const Entry (&entries)[count], BlendFactors factors) {
    for (const Entry& entry : entries)
        if (entry.factors == factors) return entry.function;
    return nullptr;
}

constexpr Entry colorRows[] = {
    {pairCopy, copyRow<4>},
    {pairOver, overRow},
    {pairUnder, plainRow<UnderFormula>},
    {pairKeepInside, plainRow<KeepInsideFormula>},
    {pairKeepOutside, plainRow<KeepOutsideFormula>},
    {pairReplaceInside, plainRow<ReplaceInsideFormula>},
    {pairAdd, plainRow<AddFormula>},
    {pairInvert, plainRow<InvertFormula>},
};

constexpr Entry grayRows[] = {
    {pairCopy, copyRow<1>},
    {pairOver, grayRow<GrayOverFormula>},
    {pairUnder, grayRow<GrayUnderFormula>},
    {pairKeepInside, grayRow<GrayInsideFormula>},
    {pairKeepOutside, grayRow<GrayOutsideFormula>},
    {pairReplaceInside, grayRow<GrayReplaceInsideFormula>},
    {pairAdd, grayRow<GrayAddFormula>},
    {pairInvert, grayRow<GrayInvertFormula>},
};

constexpr Entry alphaRows[] = {
    {pairKeepInside, alphaRow<GrayInsideFormula>},
    {pairKeepOutside, alphaRow<GrayOutsideFormula>},
};

constexpr Entry coveredRows[] = {
    {pairOver, coveredRow<CoverOverFormula>},
    {pairKeepInside, coveredRow<CoverInsideFormula>},
    {pairKeepOutside, coveredRow<CoverOutsideFormula>},
};

}  // namespace

RowFunction rowFunction(std::int32_t sourceChannels, std::int32_t targetChannels,
                        BlendFactors factors, Coverage coverage) {
    if (coverage != Coverage::Alpha) {
        if (sourceChannels != targetChannels) return nullptr;
        if (coverage == Coverage::Through)
            return targetChannels == 4 ? find(coveredRows, factors) : nullptr;
        if (factors != pairOver) return nullptr;
        return targetChannels == 4 ? coveredRow<CoverMixFormula> : grayMixRow;
    }
    if (sourceChannels == 4 && targetChannels == 4) return find(colorRows, factors);
    if (sourceChannels == 1 && targetChannels == 1) return find(grayRows, factors);
    if (sourceChannels == 4 && targetChannels == 1) return find(alphaRows, factors);
    return nullptr;
}

bool leavesTarget(BlendFactors factors, const std::uint8_t* pixel, std::int32_t channels) {
    const std::uint8_t alpha = pixel[channels == 4 ? 3 : 0];
    const bool isEmpty = std::all_of(pixel, pixel + channels, [](auto c) { return c == 0; });
    const bool addsNothing = factors.source == FactorZero || isEmpty;
    const bool takesNothing = factors.target == FactorOne ||
                              (factors.target == FactorSourceAlpha && alpha == 255) ||
                              (factors.target == FactorOneLessSourceAlpha && alpha == 0);
    return addsNothing && takesNothing;
}

ConstantPixel::ConstantPixel(const std::uint8_t* pixel, std::int32_t channels) {
    const auto size = static_cast<std::size_t>(channels);
    for (std::size_t i = 0; i + size <= bytes_.size(); i += size)
        std::memcpy(bytes_.data() + i, pixel, size);
}

}  // namespace brushwork::paint
