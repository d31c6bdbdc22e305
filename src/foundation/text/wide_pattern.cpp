#include "foundation/text/wide_pattern.h"

#include <limits>
#include <string_view>

namespace brushwork::znString {

namespace {

bool parseFlag(char16_t unit, Conversion16& result) noexcept {
    switch (unit) {
        case u'-': return result.minus = true;
        case u'+': return result.plus = true;
        case u' ': return result.space = true;
        case u'0': return result.zero = true;
        case u'#': return result.alternate = true;
        default: return false;
    }
}

// Digits or "*"; leaves `value` alone where neither stands. False if the number is too large.
bool parseNumber(const char16_t*& at, int& value) noexcept {
    if (*at == u'*') {
        ++at;
        value = fromArguments;
        return true;
    }
    if (*at < u'0' || *at > u'9') return true;
    std::int64_t number = 0;
    for (; *at >= u'0' && *at <= u'9'; ++at) {
        number = number * 10 + (*at - u'0');
        if (number > std::numeric_limits<int>::max()) return false;
    }
    value = static_cast<int>(number);
    return true;
}

struct ModifierText {
    std::u16string_view text;
    LengthModifier modifier;
};

// The longer of two that begin alike stands first.
constexpr ModifierText modifiers[] = {
    {u"I64", LengthModifier::LongLong}, {u"I32", LengthModifier::Int32},
    {u"I", LengthModifier::Difference}, {u"hh", LengthModifier::Char},
    {u"h", LengthModifier::Short},      {u"ll", LengthModifier::LongLong},
    {u"l", LengthModifier::Long},       {u"L", LengthModifier::LongDouble},
    {u"z", LengthModifier::Size},       {u"t", LengthModifier::Difference},
    {u"j", LengthModifier::Max},        {u"w", LengthModifier::Wide},
};

bool beginsWith(const char16_t* at, std::u16string_view text) noexcept {
    for (const char16_t unit : text)
        if (*at++ != unit) return false;
    return true;
}

}  // namespace

bool parseConversion(const char16_t*& at, Conversion16& result) noexcept {
    while (parseFlag(*at, result)) ++at;
    if (!parseNumber(at, result.width)) return false;
    if (*at == u'.') {
        ++at;
        result.precision = 0;
        if (!parseNumber(at, result.precision)) return false;
    }
    for (const ModifierText& candidate : modifiers) {
        if (!beginsWith(at, candidate.text)) continue;
        at += candidate.text.size();
        result.modifier = candidate.modifier;
        break;
    }
    if (std::u16string_view(u"diuoxXcCsSpfFeEgGaAn%").find(*at) == std::u16string_view::npos)
        return false;
    result.letter = static_cast<char>(*at++);
    return true;
}

}  // namespace brushwork::znString
