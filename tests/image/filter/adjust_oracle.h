// The colour adjustments once more, in double and pixel by pixel, written apart from the kernels:
// with the six-sided case distinctions that textbooks give. For whole images of proper pixels, no
// colour above its alpha.
#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <optional>
#include <vector>

#include "brushwork/color_adjust_parm.h"

namespace brushwork::test {

struct Triple {
    double a, b, c;
};

inline double bound(double v, double least, double most) {
    return std::max(least, std::min(most, v));
}

inline double oracleHue(Triple rgb) {
    const double most = std::max({rgb.a, rgb.b, rgb.c}), least = std::min({rgb.a, rgb.b, rgb.c});
    double hue = 0.0;
    if (most == rgb.a)
        hue = 60.0 * (rgb.b - rgb.c) / (most - least);
    else if (most == rgb.b)
        hue = 120.0 + 60.0 * (rgb.c - rgb.a) / (most - least);
    else
        hue = 240.0 + 60.0 * (rgb.a - rgb.b) / (most - least);
    return hue < 0.0 ? hue + 360.0 : hue;
}

inline bool isGrey(Triple rgb) {
    return rgb.a == rgb.b && rgb.b == rgb.c;
}

// Around the hexagon: p the least, v the most, x in between.
inline Triple oracleSector(double hue, double p, double v) {
    if (hue == 360.0) hue = 0.0;
    const int sector = static_cast<int>(hue / 60.0);
    const double f = hue / 60.0 - sector;
    const double rising = p + (v - p) * f, falling = v - (v - p) * f;
    switch (sector) {
        case 0: return {v, rising, p};
        case 1: return {falling, v, p};
        case 2: return {p, v, rising};
        case 3: return {p, falling, v};
        case 4: return {rising, p, v};
        default: return {v, p, falling};
    }
}

inline Triple oracleToHsv(Triple rgb) {
    const double most = std::max({rgb.a, rgb.b, rgb.c}), least = std::min({rgb.a, rgb.b, rgb.c});
    if (most == least) return {0.0, 0.0, most};
    return {oracleHue(rgb), (most - least) / most, most};
}

inline Triple oracleFromHsv(Triple hsv) {
    return oracleSector(hsv.a, hsv.c * (1.0 - hsv.b), hsv.c);
}

inline Triple oracleToHsl(Triple rgb, double& remembered) {
    const double most = std::max({rgb.a, rgb.b, rgb.c}), least = std::min({rgb.a, rgb.b, rgb.c});
    const double light = (most + least) / 2.0;
    if (most == least) return {remembered, 0.0, light};
    remembered = oracleHue(rgb);
    const double chroma = most - least;
    const double full = 255.0 - std::fabs(2.0 * light - 255.0);
    return {remembered, std::min(chroma / full, 1.0), light};
}

inline Triple oracleFromHsl(Triple hsl) {
    const double half = hsl.b * (255.0 - std::fabs(2.0 * hsl.c - 255.0)) / 2.0;
    return oracleSector(hsl.a, hsl.c - half, hsl.c + half);
}

// What the oracle says of one pixel: a word, or colours of which the fraction is to be cut off.
struct OraclePixel {
    std::optional<std::uint32_t> word;
    Triple stored{};
    bool unsure = false;  // float and double may lie on two sides of a jump
};

class AdjustOracle {
  public:
    explicit AdjustOracle(const ColorAdjustParm& parm, double remembered = 0.0)
        : parm_(parm), remembered_(remembered) {}

    OraclePixel operator()(std::uint32_t word) {
        unsure_ = false;
        const double alpha = word >> 24;
        if (alpha == 0.0) return {parm_.kind == AdjustShowRanges ? 0 : word, {}, false};
        const auto straight = [&](int shift) { return (word >> shift & 0xFF) * 255.0 / alpha; };
        const Triple old{straight(0), straight(8), straight(16)};
        std::optional<std::uint32_t> shown;
        Triple now = old;
        switch (parm_.kind) {
            case AdjustToneBalance: now = balance(old); break;
            case AdjustToneGain: now = gain(old); break;
            case AdjustTint: now = tint(old); break;
            case AdjustRanges:
            case AdjustShowRanges: now = ranges(old, shown); break;
            case AdjustHsl: now = hsl(old); break;
            case AdjustInvert: now = {255.0 - old.a, 255.0 - old.b, 255.0 - old.c}; break;
            default: break;
        }
        if (shown) return {shown, {}, unsure_};
        const auto stored = [&](double c) { return bound(c * alpha / 255.0, 0.0, 255.0); };
        return {std::nullopt, {stored(now.a), stored(now.b), stored(now.c)}, unsure_};
    }

    // Whether `got` is what becomes of `word`, given what float may lose. A result that is whole
    // in exact arithmetic leaves no choice.
    bool agrees(std::uint32_t word, std::uint32_t got, bool& unsure) {
        const OraclePixel expected = (*this)(word);
        unsure = expected.unsure;
        if (expected.word) return *expected.word == got;
        if (got >> 24 != word >> 24) return false;
        const auto fits = [](double value, std::uint32_t byte) {
            // The kernels add a 1024th, and float is right to within 0.0009.
            const double least = std::floor(value + 1.0 / 1024.0 - 0.0009);
            const double most = std::floor(value + 1.0 / 1024.0 + 0.0009);
            return byte >= least && byte <= most;
        };
        return fits(expected.stored.a, got & 0xFF) && fits(expected.stored.b, got >> 8 & 0xFF) &&
               fits(expected.stored.c, got >> 16 & 0xFF);
    }

  private:
    struct Tones {
        double high, mid, low;
        [[nodiscard]] double of(const ColorAdjustTones& t) const {
            return t[0] * high + t[1] * mid + t[2] * low;
        }
    };
    static Tones tonesOf(Triple c) {
        const double lum = (0.299 * c.a + 0.587 * c.b + 0.114 * c.c) / 255.0;
        const double high = lum < 0.5 ? 0.0 : 2.0 * lum - 1.0;
        const double low = lum > 0.5 ? 0.0 : 1.0 - 2.0 * lum;
        return {high, 1.0 - high - low, low};
    }
    static Triple bounded(Triple hsx) {
        return {bound(hsx.a, 0.0, 360.0), bound(hsx.b, 0.0, 1.0), bound(hsx.c, 0.0, 255.0)};
    }
    static Triple boundedColor(Triple c) {
        return {bound(c.a, 0.0, 255.0), bound(c.b, 0.0, 255.0), bound(c.c, 0.0, 255.0)};
    }

    [[nodiscard]] Triple balance(Triple old) const {
        const Tones tones = tonesOf(old);
        Triple c = oracleToHsv(old);
        const auto& s = parm_.toneSaturation;
        const double m = (0.25 * s[0] + 0.5 * s[1] + 0.25 * s[2]) * 255.0;
        c.b *= tones.of(s);
        c.c = c.c / 255.0 * m + 128.0 - m * 128.0 / 255.0;
        const Triple rgb = oracleFromHsv(bounded(c));
        double shift = 0.0;
        const double weights[] = {tones.high, tones.mid, tones.low};
        for (std::size_t i = 0; i < 3; ++i) {
            const double change = parm_.toneBrightness[i] - 1.0;
            shift += (change < 0.0 ? -1.0 : 1.0) * change * change * 127.5 * weights[i];
        }
        return boundedColor({rgb.a + shift, rgb.b + shift, rgb.c + shift});
    }

    [[nodiscard]] Triple gain(Triple old) const {
        const Tones tones = tonesOf(old);
        Triple c = oracleToHsv(old);
        c.b *= tones.of(parm_.toneSatGain);
        c.c *= tones.of(parm_.toneValueGain);
        return oracleFromHsv(bounded(c));
    }

    [[nodiscard]] double tintHue(std::size_t tone) const {
        static constexpr int red[] = {1, 1, 0, 0, 0, 1}, green[] = {0, 1, 1, 1, 0, 0},
                             blue[] = {0, 0, 0, 1, 1, 1};
        Triple sum{};
        for (std::size_t i = 0; i < 6; ++i) {
            const double weight = parm_.toneTint[tone][i] * 255.0;
            sum = {sum.a + red[i] * weight, sum.b + green[i] * weight, sum.c + blue[i] * weight};
        }
        return oracleToHsv(boundedColor(sum)).a;
    }

    Triple tint(Triple old) {
        const Tones tones = tonesOf(old);
        Triple c = oracleToHsv(old);
        c.a = tones.high * tintHue(0) + tones.mid * tintHue(1) + tones.low * tintHue(2);
        if (parm_.toneTintBoost) {
            if (std::fabs(c.b - 0.5) < 1e-5) unsure_ = true;
            if (c.b < 0.5) {
                c.b = 0.5;
                c.c = std::max(c.c, 75.0);
            }
        }
        return oracleFromHsv(bounded(c));
    }

    using Record = std::array<double, 4>;
    static Record scaled(const ColorAdjustRange& range, double scale, bool isHue) {
        Record record{};
        for (std::size_t i = 0; i < 4; ++i) record[i] = range[i] * scale;
        for (double& point : record)
            if (isHue && point < record[0]) point += 360.0;
        return record;
    }
    bool inRange(double v, const Record& r) {
        for (const double point : r) {
            const bool exact = v == point && (v == 0.0 || v == 1.0 || v == 255.0);
            if (!exact && std::fabs(v - point) < 1e-3) unsure_ = true;
        }
        return r[0] <= v && v <= r[3];
    }
    static double share(double v, double from, double to) {
        return to - from <= 0.0 ? 0.0 : (v - from) / (to - from);
    }
    static double remap(double v, const Record& f, const Record& t, double& weight) {
        if (v < f[1]) {
            weight = share(v, f[0], f[1]);
            return weight * (t[1] - t[0]) + t[0];
        }
        if (v <= f[2]) {
            weight = 1.0;
            return share(v, f[1], f[2]) * (t[2] - t[1]) + t[1];
        }
        weight = share(v, f[2], f[3]);
        return weight * (t[3] - t[2]) + t[2];
    }

    Triple ranges(Triple old, std::optional<std::uint32_t>& shown) {
        Triple c = oracleToHsl(old, remembered_);
        const Record hue = scaled(parm_.hueRange, 360.0, true);
        const Record sat = scaled(parm_.satRange, 1.0, false);
        const Record light = scaled(parm_.lightRange, 255.0, false);
        const bool here = inRange(c.a, hue), ahead = inRange(c.a + 360.0, hue);
        bool taken = !parm_.useHue || here || ahead;
        taken &= inRange(c.b, sat) || !parm_.useSaturation;
        taken &= inRange(c.c, light) || !parm_.useLightness;
        if (parm_.kind == AdjustShowRanges) shown = 0xFF7D7DFF;
        if (!taken) return old;
        double wh = 0.0, ws = 0.0, wl = 0.0;
        if (parm_.useHue) {
            c.a = remap(here ? c.a : c.a + 360.0, hue, scaled(parm_.hueTarget, 360.0, true), wh);
            if (c.a > 360.0) c.a -= 360.0;
        }
        if (parm_.useSaturation) c.b = remap(c.b, sat, scaled(parm_.satTarget, 1.0, false), ws);
        if (parm_.useLightness)
            c.c = remap(c.c, light, scaled(parm_.lightTarget, 255.0, false), wl);
        const int others = (parm_.useSaturation ? 1 : 0) + (parm_.useLightness ? 1 : 0);
        const double weight = parm_.useHue ? wh : (ws + wl) / others;
        if (shown) {
            const double tone = weight * 130.0 + 125.0;
            const double away = tone + 1.0 / 1024.0;
            if (std::fabs(away - std::round(away)) < 0.0009) unsure_ = true;
            const auto byte = static_cast<std::uint32_t>(away);
            shown = 0xFF0000FF | byte << 8 | byte << 16;
            return old;
        }
        const Triple now = boundedColor(oracleFromHsl(bounded(c)));
        return {old.a + (now.a - old.a) * weight, old.b + (now.b - old.b) * weight,
                old.c + (now.c - old.c) * weight};
    }

    static double wrapped(double degrees) { return degrees - 360.0 * std::floor(degrees / 360.0); }

    Triple hsl(Triple old) {
        const bool shifts = parm_.hslMode == 2;
        const double sat = shifts ? parm_.saturation.second : parm_.saturation.first;
        const double light = shifts ? parm_.lightness.second : parm_.lightness.first;
        const double turn = shifts ? parm_.hue.second : 0.0;
        Triple c = oracleToHsl(old, remembered_);
        Triple rgb = old;
        if (sat != 0.0 || turn != 0.0) {
            c.a = wrapped(c.a + turn);
            c.b = bound((sat + 1.0) * c.b, 0.0, 1.0);
            rgb = boundedColor(oracleFromHsl(c));
        }
        if (!shifts && parm_.colorizeAmount > 0.0f) {
            const double least = parm_.hslMode == 1 ? 0.5 : 0.0;
            const Triple target =
                oracleFromHsl({wrapped(parm_.hue.first), std::max(c.b, least), c.c});
            const double amount = parm_.colorizeAmount;
            rgb = {rgb.a + (target.a - rgb.a) * amount, rgb.b + (target.b - rgb.b) * amount,
                   rgb.c + (target.c - rgb.c) * amount};
        }
        const auto lit = [&](double v) {
            return light >= 0.0 ? v + (255.0 - v) * light : v * (light + 1.0);
        };
        return {lit(rgb.a), lit(rgb.b), lit(rgb.c)};
    }

    const ColorAdjustParm& parm_;
    double remembered_;
    bool unsure_ = false;
};

// A kind with random numbers, some of them at their neutral or outermost values.
template <class Random>
ColorAdjustParm randomParm(std::int32_t kind, Random& random) {
    const auto number = [&](float least, float most) {
        const auto draw = static_cast<float>(random() % 1001) / 1000.0f;
        return least + (most - least) * draw;
    };
    ColorAdjustParm parm;
    parm.reset(kind);
    for (std::size_t i = 0; i < 3; ++i) {
        parm.toneBrightness[i] = number(0.0f, 2.0f);
        parm.toneSaturation[i] = number(0.0f, 2.0f);
        parm.toneSatGain[i] = number(0.0f, 2.0f);
        parm.toneValueGain[i] = number(0.0f, 2.0f);
        for (float& weight : parm.toneTint[i]) weight = random() % 2 ? number(0.0f, 1.0f) : 0.0f;
    }
    parm.toneTint[0][0] += 0.5f;
    parm.toneTintBoost = static_cast<std::uint8_t>(random() % 2);
    const auto range = [&](ColorAdjustRange& r, bool turns) {
        for (float& point : r) point = number(0.0f, 1.0f);
        std::sort(r.begin(), r.end());
        if (random() % 4 == 0) r[1] = r[0];
        if (random() % 4 == 0) r[3] = r[2];
        if (turns && random() % 2) std::rotate(r.begin(), r.begin() + 2, r.end());
    };
    range(parm.hueRange, true);
    range(parm.hueTarget, true);
    range(parm.satRange, false);
    range(parm.satTarget, false);
    range(parm.lightRange, false);
    range(parm.lightTarget, false);
    if (random() % 2) parm.satRange = parm.lightRange = {0.0f, 0.2f, 0.9f, 1.0f};
    const auto uses = static_cast<unsigned>(1 + random() % 7);
    parm.useHue = uses & 1;
    parm.useSaturation = uses >> 1 & 1;
    parm.useLightness = uses >> 2 & 1;
    parm.hslMode = static_cast<std::int32_t>(random() % 3);
    parm.colorizeAmount = random() % 3 ? number(0.0f, 1.0f) : 0.0f;
    parm.hue = {number(-400.0f, 400.0f), random() % 3 ? number(-400.0f, 400.0f) : 0.0f};
    parm.saturation = {random() % 3 ? number(-1.0f, 1.0f) : 0.0f, number(-1.0f, 1.0f)};
    parm.lightness = {random() % 3 ? number(-1.0f, 1.0f) : 0.0f,
                      random() % 3 ? number(-1.0f, 1.0f) : 0.0f};
    return parm;
}

}  // namespace brushwork::test
