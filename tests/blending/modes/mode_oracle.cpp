#include "blending/modes/mode_oracle.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>

namespace brushwork::test {
namespace {

using Big = std::int64_t;

// x / y, rounded down.
Big floored(Big x, Big y) {
    const Big q = x / y;
    return x % y != 0 && (x < 0) != (y < 0) ? q - 1 : q;
}

// What 32 bits keep.
Big wrapped(Big x) {
    const Big low = x - floored(x, 4294967296) * 4294967296;
    return low >= 2147483648 ? low - 4294967296 : low;
}

// Above 255: 255. Below 0: what a byte keeps.
Big cut(Big x) {
    return x > 255 ? 255 : x - floored(x, 256) * 256;
}

// Two floats' sum, product and quotient in double have enough digits for the second rounding not
// to matter.
float rounded(double x) {
    return static_cast<float>(x);
}

Big truncated(float x) {
    if (std::isnan(x)) return 0;
    if (x >= 2147483648.0f) return 2147483647;
    if (x <= -2147483648.0f) return -2147483648LL;
    return static_cast<Big>(std::trunc(x));
}

// One colour. s and a in units of 1 / `one`: bytes, or 256 times as fine.
struct Point {
    Big s, a, d, b;
};

float softBend(const Point& p) {
    const float twice = rounded(static_cast<double>(2 * p.s - p.a));
    const float square = rounded(static_cast<double>(p.d * p.d));
    const float product = rounded(double{twice} * double{square});
    return rounded(double{product} / static_cast<double>(p.b));
}

Big burnt(const Point& p) {
    if (p.s == 0) return 0;
    const float sum = rounded(static_cast<double>((p.d - p.b) * p.a + p.b * p.s));
    const float ratio = rounded(static_cast<double>(p.a) / static_cast<double>(p.s));
    return truncated(std::max(rounded(double{sum} * double{ratio}), 0.0f));
}

Big dodged(const Point& p) {
    const Big room = p.a - p.s + 1;
    return room <= 0 ? p.b : std::min(p.b, p.d * p.a / room);
}

Big plainColor(BlendModeId mode, const Point& p) {
    const auto [s, a, d, b] = p;
    switch (mode) {
        case BlendModeId::Multiply: return floored(256 * (d + s) - a * d - b * s + d * s, 256);
        case BlendModeId::Screen: return s + d - floored(d * s, 256);
        case BlendModeId::Add:
            return d + s - std::max<Big>(floored(d * s - (a - s) * (b - d), 256), 0);
        case BlendModeId::SoftGlow:
            return d + s - std::max<Big>(floored(s * d - (b - d) * (256 - s), 256), 0);
        case BlendModeId::Lighten: return floored(256 * (s + d) + std::max(-a * d, -b * s), 256);
        case BlendModeId::Darken: return floored(256 * (s + d) + std::min(-a * d, -b * s), 256);
        case BlendModeId::Overlay:
            return floored(
                (d - b + 256) * s + (s - a + 256) * d - (2 * d > b ? (2 * d - b) * (2 * s - a) : 0),
                256);
        case BlendModeId::HardLight:
            return floored(
                (d - b + 256) * s + (s - a + 256) * d - (2 * s > a ? (2 * d - b) * (2 * s - a) : 0),
                256);
        case BlendModeId::SoftLight:
            return floored(wrapped((d - b + 256) * s + (s - a + 256) * d - truncated(softBend(p))),
                           256);
        case BlendModeId::ColorDodge:
            return floored((dodged(p) - d) * a + 256 * (d + s) - b * s, 256);
        case BlendModeId::ColorBurn: return d + s - floored(d * a + b * s - burnt(p), 256);
        case BlendModeId::LinearBurn: return d + s - floored(std::min(b * a, b * s + d * a), 256);
        case BlendModeId::Glow:
            return std::min(b, 256 * d / (256 - s)) + floored((256 - b) * s, 256);
        default: throw std::logic_error("no such colour formula");
    }
}

// s and a are 16-bit numbers here.
Big maskedColor(BlendModeId mode, const Point& p) {
    const auto [s, a, d, b] = p;
    switch (mode) {
        case BlendModeId::Multiply: return floored((65535 - a) * d + (256 - b) * s + d * s, 65536);
        case BlendModeId::Screen: return floored(65536 * d + 256 * s - d * s, 65536);
        case BlendModeId::Add:
            return floored(256 * d + s - std::max<Big>(floored(d * s - (a - s) * (b - d), 256), 0),
                           256);
        case BlendModeId::SoftGlow:
            return floored(
                256 * d + s - std::max<Big>(floored(s * d - (b - d) * (256 - s), 256), 0), 256);
        case BlendModeId::Lighten:
            return floored(std::max(256 * s + (65535 - a) * d, 65536 * d + (256 - b) * s), 65536);
        case BlendModeId::Darken:
            return floored(std::min(256 * s + (65535 - a) * d, 65536 * d + (256 - b) * s), 65536);
        case BlendModeId::Overlay:
            return floored((d - b + 256) * s + (s - a + 65535) * d -
                               (2 * d > b ? (2 * d - b) * (2 * s - a) : 0),
                           65536);
        case BlendModeId::HardLight:
            return floored((d - b + 256) * s + (s - a + 65535) * d -
                               (2 * s > a ? (2 * d - b) * (2 * s - a) : 0),
                           65536);
        case BlendModeId::SoftLight: {
            const Big q = b == 0 ? 0 : truncated(softBend(p));
            return floored(wrapped((d - b + 256) * s + (s - a + 65535) * d - q), 65536);
        }
        case BlendModeId::ColorDodge:
            return floored((dodged(p) - d) * a + (256 - b) * s + 65536 * d, 65536);
        case BlendModeId::LinearBurn:
            return floored(256 * d - floored(std::min(b * a, b * s + d * a), 256) + s, 256);
        case BlendModeId::Glow:
            return std::min(b, 65536 * d / (65536 - s)) + floored((256 - b) * s, 256);
        default: throw std::logic_error("no such colour formula");
    }
}

// Of the four modes that see a colour as a whole.
struct Tone {
    float c[3];
    [[nodiscard]] float least() const { return std::min({c[0], c[1], c[2]}); }
    [[nodiscard]] float most() const { return std::max({c[0], c[1], c[2]}); }
    [[nodiscard]] float range() const { return most() - least(); }
    [[nodiscard]] float luminosity() const {
        const float green = rounded(double{0.587f} * double{c[1]});
        const float red = rounded(double{0.299f} * double{c[0]});
        const float blue = rounded(double{0.114f} * double{c[2]});
        return rounded(double{rounded(double{green} + double{red})} + double{blue});
    }
};

float ratio(double top, double bottom) {
    return rounded(double{rounded(top)} / double{rounded(bottom)});
}

Channels wholeColor(BlendModeId mode, const Channels& s, const Channels& d) {
    const Big a = s[3], b = d[3];
    Tone S{}, D{};
    for (std::size_t c = 0; c < 3; ++c) {
        S.c[c] = static_cast<float>(s[c] * b);
        D.c[c] = static_cast<float>(d[c] * a);
    }
    const bool keepsTarget = mode == BlendModeId::Saturation || mode == BlendModeId::Luminosity;
    const bool takesLight = mode == BlendModeId::Luminosity;
    const Tone& base = keepsTarget ? D : S;
    const double from = base.luminosity();
    const double to = (takesLight ? S : D).luminosity();
    float f = 0;
    const bool colored = base.range() != 0 && (mode != BlendModeId::Hue || D.range() != 0);
    if (colored) {
        f = mode == BlendModeId::Hue          ? ratio(D.range(), S.range())
            : mode == BlendModeId::Saturation ? ratio(S.range(), D.range())
                                              : 1.0f;
        const double top = static_cast<double>(a * b);
        f = std::min(f, ratio(to, from - double{base.least()}));
        f = std::min(f, ratio(top - to, double{base.most()} - from));
    }
    Channels out{};
    for (std::size_t c = 0; c < 3; ++c) {
        const float pulled = rounded(double{rounded(double{base.c[c]} - from)} * double{f});
        const Big value = truncated(rounded(double{pulled} + to));
        out[c] = cut(floored((256 - a) * d[c] + (256 - b) * s[c] + value, 256));
    }
    out[3] = cut(a + b - floored(a * b, 256));
    return out;
}

bool isWhole(BlendModeId mode) {
    return mode == BlendModeId::Hue || mode == BlendModeId::Saturation ||
           mode == BlendModeId::Color || mode == BlendModeId::Luminosity;
}

bool isEmpty(const Channels& p) {
    return p == Channels{};
}

}  // namespace

Channels blendedPlain(BlendModeId mode, const Channels& source, const Channels& target) {
    const Big a = source[3], b = target[3];
    Channels out = target;
    switch (mode) {
        case BlendModeId::Replace:
        case BlendModeId::MaskMultiply: return source;
        case BlendModeId::Normal:
            for (std::size_t c = 0; c < 4; ++c)
                out[c] = cut(source[c] - floored((a + 1) * target[c], 256) + target[c]);
            return out;
        case BlendModeId::Clear:
            if (isEmpty(source)) return target;
            for (Big& channel : out) channel = floored(channel * (256 - a), 256);
            return out;
        default: break;
    }
    if (isEmpty(source)) return target;
    if (isEmpty(target)) return source;
    if (isWhole(mode)) return wholeColor(mode, source, target);
    for (std::size_t c = 0; c < 3; ++c)
        out[c] = cut(plainColor(mode, {source[c], a, target[c], b}));
    out[3] = mode == BlendModeId::Glow ? cut(b + floored(a * (256 - b), 256))
                                       : cut(floored((256 - a) * b + 256 * a, 256));
    return out;
}

Channels blendedMasked(BlendModeId mode, const Channels& source, const Channels& target, Big mask,
                       Big opacity) {
    const Big a = source[3], b = target[3];
    Channels out = target;
    if (mode == BlendModeId::MaskMultiply) {
        const Big w = (65535 - opacity + floored(mask * opacity, 256)) % 65536;
        for (std::size_t c = 0; c < 4; ++c) out[c] = floored(source[c] * w, 65536);
        return out;
    }
    if (mask == 0) return target;
    if (mode == BlendModeId::Replace) {
        const Big k = floored(mask * opacity, 65536) + 1;
        for (std::size_t c = 0; c < 4; ++c) {
            const Big sum = floored(source[c] * k, 4) + floored(target[c] * (256 - k), 4);
            out[c] = floored(std::min<Big>(sum, 16383), 64);
        }
        return out;
    }
    if (isEmpty(source)) return target;
    if (mode == BlendModeId::Normal) {
        const Big k = floored((mask + 1) * opacity, 65536) + 1;
        const Big alpha = floored(a * k, 256);
        for (std::size_t c = 0; c < 4; ++c) {
            const Big s = floored(source[c] * k, 256);
            out[c] = b == 0 ? s : cut(s - floored((alpha + 1) * target[c], 256) + target[c]);
        }
        return out;
    }
    const Big k = floored(mask * opacity, 256) + 256;
    if (mode == BlendModeId::Clear) {
        const Big j = 65279 - floored(k * a, 256) % 16777216;
        for (std::size_t c = 0; c < 4; ++c) out[c] = cut(floored(target[c] * j, 65536));
        return out;
    }
    if (isWhole(mode)) {
        Channels scaled{};
        for (std::size_t c = 0; c < 4; ++c) scaled[c] = floored(source[c] * k, 65536) + 1;
        return wholeColor(mode, scaled, target);
    }
    if (mode == BlendModeId::ColorBurn) {
        const Big a0 = floored(a * k, 256);
        for (std::size_t c = 0; c < 3; ++c) {
            const Point p{floored(source[c] * k, 256), a0, target[c], b};
            const Big lost = floored(p.d * a0 + b * p.s - burnt(p), 256);
            out[c] = cut(floored(256 * p.d - lost + p.s, 256));
        }
        out[3] = cut(floored((65535 - a0) * b + floored(a * k, 256) * 256, 65536));
        return out;
    }
    const Big A = floored(a * k, 256) + 256;
    for (std::size_t c = 0; c < 3; ++c)
        out[c] = cut(maskedColor(mode, {floored(source[c] * k, 256) + 256, A, target[c], b}));
    out[3] = mode == BlendModeId::Glow ? cut(b + floored(A * (256 - b), 256))
                                       : cut(floored((65535 - A) * b + 256 * A, 65536));
    return out;
}

}  // namespace brushwork::test
