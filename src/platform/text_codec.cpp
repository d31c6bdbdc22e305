#include "platform/text_codec.h"

#include <cstddef>
#include <cstdint>

namespace brushwork::platform {

namespace {

// What may follow a first byte. Only the second byte has bounds of its own: they keep out overlong
// forms, surrogates and values above U+10FFFF; every later byte is 80..BF.
struct Lead {
    int following;  // 0 for a byte that can't begin a sequence
    std::uint8_t secondLow, secondHigh;
};

constexpr Lead leadOf(std::uint8_t byte) noexcept {
    if (byte >= 0xC2 && byte <= 0xDF) return {1, 0x80, 0xBF};
    if (byte == 0xE0) return {2, 0xA0, 0xBF};
    if (byte == 0xED) return {2, 0x80, 0x9F};
    if (byte >= 0xE1 && byte <= 0xEF) return {2, 0x80, 0xBF};
    if (byte == 0xF0) return {3, 0x90, 0xBF};
    if (byte >= 0xF1 && byte <= 0xF3) return {3, 0x80, 0xBF};
    if (byte == 0xF4) return {3, 0x80, 0x8F};
    return {0, 0, 0};
}

constexpr bool isHighSurrogate(char32_t unit) noexcept {
    return (unit & 0xFFFFFC00) == 0xD800;
}
constexpr bool isLowSurrogate(char32_t unit) noexcept {
    return (unit & 0xFFFFFC00) == 0xDC00;
}

void appendBytes(std::string& text, char32_t character) {
    const auto trail = [character](int shift) {
        return static_cast<char>(0x80 | ((character >> shift) & 0x3F));
    };
    if (character < 0x80) {
        text += static_cast<char>(character);
    } else if (character < 0x800) {
        text += static_cast<char>(0xC0 | (character >> 6));
        text += trail(0);
    } else if (character < 0x10000) {
        text += static_cast<char>(0xE0 | (character >> 12));
        text += trail(6);
        text += trail(0);
    } else {
        text += static_cast<char>(0xF0 | (character >> 18));
        text += trail(12);
        text += trail(6);
        text += trail(0);
    }
}

}  // namespace

char32_t nextUtf8(const char*& at, const char* end, bool& clean) noexcept {
    const auto first = static_cast<std::uint8_t>(*at++);
    if (first < 0x80) return first;
    const Lead lead = leadOf(first);
    char32_t character = first & (0x3FU >> lead.following);
    for (int index = 0; index < lead.following; ++index) {
        const std::uint8_t low = index ? 0x80 : lead.secondLow;
        const std::uint8_t high = index ? 0xBF : lead.secondHigh;
        const auto byte = at != end ? static_cast<std::uint8_t>(*at) : std::uint8_t{0};
        if (byte < low || byte > high) {
            clean = false;
            return replacementCharacter;
        }
        character = character << 6 | (byte & 0x3FU);
        ++at;
    }
    if (lead.following) return character;
    clean = false;
    return replacementCharacter;
}

void appendUnits(std::u16string& text, char32_t character) {
    if (character < 0x10000) {
        text += static_cast<char16_t>(character);
    } else {
        text += static_cast<char16_t>(0xD7C0 + (character >> 10));
        text += static_cast<char16_t>(0xDC00 | (character & 0x3FF));
    }
}

std::u16string fromUtf8(std::string_view bytes, bool* clean) {
    std::u16string text;
    text.reserve(bytes.size());
    bool valid = true;
    const char* const end = bytes.data() + bytes.size();
    for (const char* at = bytes.data(); at != end;) appendUnits(text, nextUtf8(at, end, valid));
    if (clean) *clean = valid;
    return text;
}

std::string toUtf8(std::u16string_view units) {
    std::string text;
    text.reserve(units.size());
    for (std::size_t index = 0; index < units.size(); ++index) {
        char32_t character = units[index];
        if (isHighSurrogate(character) && index + 1 < units.size() &&
            isLowSurrogate(units[index + 1]))
            character = 0x10000 + ((character - 0xD800) << 10) + (units[++index] - 0xDC00U);
        else if (isHighSurrogate(character) || isLowSurrogate(character))
            character = replacementCharacter;
        appendBytes(text, character);
    }
    return text;
}

}  // namespace brushwork::platform
