#include "foundation/text/wide_printf.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <limits>
#include <string>
#include <string_view>

#include "foundation/text/wide_pattern.h"
#include "platform/text_codec.h"

namespace brushwork::znString {

namespace {

// Keeps what fits and counts the rest.
class UnitSink {
  public:
    explicit UnitSink(std::span<char16_t> buffer) : buffer_(buffer) {}
    void put(char16_t unit) {
        if (count_ < buffer_.size()) buffer_[static_cast<std::size_t>(count_)] = unit;
        ++count_;
    }
    void fill(std::uint64_t count) {
        const std::uint64_t room = buffer_.size() - std::min<std::uint64_t>(count_, buffer_.size());
        const auto visible = static_cast<std::size_t>(std::min(count, room));
        for (std::size_t index = 0; index < visible; ++index) put(u' ');
        count_ += count - visible;
    }
    void text(std::u16string_view units) {
        for (const char16_t unit : units) put(unit);
    }
    [[nodiscard]] std::uint64_t count() const { return count_; }

  private:
    std::span<char16_t> buffer_;
    std::uint64_t count_ = 0;
};

std::size_t boundedLength(const char16_t* text, std::size_t most) {
    std::size_t length = 0;
    while (length < most && text[length]) ++length;
    return length;
}

// At most `most` units of the text. Reads no further than they need: with a precision the text
// needs no terminator.
std::u16string widened(const char* text, std::size_t most) {
    std::u16string units;
    bool clean = true;
    while (units.size() < most && *text) {
        const std::size_t before = units.size();
        platform::appendUnits(units, platform::nextUtf8(text, nullptr, clean));
        if (units.size() > most) {
            units.resize(before);
            break;
        }
    }
    return units;
}

// One run over a pattern. It works on its own copy of the argument list.
class WideFormatter {
  public:
    WideFormatter(std::span<char16_t> buffer, std::va_list arguments) : sink_(buffer) {
        va_copy(arguments_, arguments);
    }
    WideFormatter(const WideFormatter&) = delete;
    WideFormatter& operator=(const WideFormatter&) = delete;
    ~WideFormatter() { va_end(arguments_); }

    std::uint64_t run(const char16_t* pattern) {
        while (*pattern) {
            const char16_t unit = *pattern++;
            if (unit != u'%') {
                sink_.put(unit);
                continue;
            }
            Conversion16 conversion;
            if (!parseConversion(pattern, conversion) || !takeStars(conversion) ||
                !write(conversion) || sink_.count() >= mostFormattedUnits)
                return 0;
        }
        sink_.put(u'\0');
        return sink_.count() <= mostFormattedUnits ? sink_.count() : 0;
    }

  private:
    bool takeStars(Conversion16& conversion) {
        if (conversion.width == fromArguments) {
            conversion.width = va_arg(arguments_, int);
            if (conversion.width == std::numeric_limits<int>::min()) return false;
            if (conversion.width < 0) {
                conversion.minus = true;
                conversion.width = -conversion.width;
            }
        }
        if (conversion.precision == fromArguments)
            conversion.precision = std::max(va_arg(arguments_, int), notGiven);
        return true;
    }

    bool write(const Conversion16& conversion) {
        switch (conversion.letter) {
            case '%': sink_.put(u'%'); return true;
            case 'd':
            case 'i': return writeNumber(conversion, "ll", 'd', takeSigned(conversion.modifier));
            case 'u':
            case 'o':
            case 'x':
            case 'X':
                return writeNumber(conversion, "ll", conversion.letter,
                                   takeUnsigned(conversion.modifier));
            case 'c':
            case 'C': writeUnit(conversion); return true;
            case 's':
            case 'S': writeString(conversion); return true;
            case 'p': writePointer(conversion); return true;
            case 'n': return false;
            default: break;
        }
        if (conversion.modifier == LengthModifier::LongDouble)
            return writeNumber(conversion, "L", conversion.letter, va_arg(arguments_, long double));
        return writeNumber(conversion, "", conversion.letter, va_arg(arguments_, double));
    }

    long long takeSigned(LengthModifier modifier) {
        switch (modifier) {
            case LengthModifier::Char: return static_cast<signed char>(va_arg(arguments_, int));
            case LengthModifier::Short: return static_cast<short>(va_arg(arguments_, int));
            case LengthModifier::Long: return va_arg(arguments_, long);
            case LengthModifier::LongLong: return va_arg(arguments_, long long);
            case LengthModifier::Max: return va_arg(arguments_, std::intmax_t);
            case LengthModifier::Size:
            case LengthModifier::Difference: return va_arg(arguments_, std::ptrdiff_t);
            default: return va_arg(arguments_, int);
        }
    }

    unsigned long long takeUnsigned(LengthModifier modifier) {
        switch (modifier) {
            case LengthModifier::Char:
                return static_cast<unsigned char>(va_arg(arguments_, unsigned));
            case LengthModifier::Short:
                return static_cast<unsigned short>(va_arg(arguments_, unsigned));
            case LengthModifier::Long: return va_arg(arguments_, unsigned long);
            case LengthModifier::LongLong: return va_arg(arguments_, unsigned long long);
            case LengthModifier::Max: return va_arg(arguments_, std::uintmax_t);
            case LengthModifier::Size:
            case LengthModifier::Difference: return va_arg(arguments_, std::size_t);
            default: return va_arg(arguments_, unsigned);
        }
    }

    // Lower-case letters take text of the pattern's own width, capitals of the other.
    static bool isNarrow(const Conversion16& conversion) {
        switch (conversion.modifier) {
            case LengthModifier::Char:
            case LengthModifier::Short: return true;
            case LengthModifier::Long:
            case LengthModifier::Wide: return false;
            default: return conversion.letter == 'S' || conversion.letter == 'C';
        }
    }

    void writePadded(const Conversion16& conversion, std::u16string_view text) {
        const auto width = static_cast<std::uint64_t>(std::max(conversion.width, 0));
        const std::uint64_t padding = width > text.size() ? width - text.size() : 0;
        if (!conversion.minus) sink_.fill(padding);
        sink_.text(text);
        if (conversion.minus) sink_.fill(padding);
    }

    void writeUnit(const Conversion16& conversion) {
        const int value = va_arg(arguments_, int);
        const char byte = static_cast<char>(value);
        const char16_t unit = isNarrow(conversion) ? platform::fromUtf8({&byte, 1}).front()
                                                   : static_cast<char16_t>(value);
        writePadded(conversion, {&unit, 1});
    }

    void writeString(const Conversion16& conversion) {
        const auto most = conversion.precision < 0 ? std::u16string_view::npos
                                                   : static_cast<std::size_t>(conversion.precision);
        if (isNarrow(conversion)) {
            const char* text = va_arg(arguments_, const char*);
            writePadded(conversion, widened(text ? text : "(null)", most));
            return;
        }
        const char16_t* text = va_arg(arguments_, const char16_t*);
        if (!text) text = u"(null)";
        std::size_t length = boundedLength(text, most);
        // A precision must not part a pair; without one there is a terminator behind the text.
        if (length && length == most && (text[length - 1] & 0xFC00) == 0xD800) --length;
        writePadded(conversion, {text, length});
    }

    void writePointer(const Conversion16& conversion) {
        auto value = reinterpret_cast<std::uintptr_t>(va_arg(arguments_, void*));
        std::array<char16_t, 2 * sizeof value> digits;
        for (std::size_t index = digits.size(); index-- > 0; value >>= 4)
            digits[index] = u"0123456789ABCDEF"[value & 15];
        writePadded(conversion, {digits.data(), digits.size()});
    }

    // The C runtime writes the number; the width is left out where none was given.
    template <class Number>
    bool writeNumber(const Conversion16& conversion, const char* modifier, char letter,
                     Number number) {
        std::string pattern = "%";
        if (conversion.minus) pattern += '-';
        if (conversion.plus) pattern += '+';
        if (conversion.space) pattern += ' ';
        if (conversion.zero) pattern += '0';
        if (conversion.alternate && letter != 'd' && letter != 'u') pattern += '#';
        pattern.append("*.*").append(modifier) += letter;
        const int width = std::max(conversion.width, 0);
        std::array<char, 128> few;
        const int length =
            print(few.data(), few.size(), pattern, width, conversion.precision, number);
        if (length < 0) return false;
        const auto size = static_cast<std::size_t>(length);
        if (size < few.size()) {
            sink_.text(platform::fromUtf8({few.data(), size}));
            return true;
        }
        std::string many(size + 1, '\0');
        print(many.data(), many.size(), pattern, width, conversion.precision, number);
        sink_.text(platform::fromUtf8({many.data(), size}));
        return true;
    }

    template <class Number>
    static int print(char* buffer, std::size_t size, const std::string& pattern, int width,
                     int precision, Number number) {
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
        return std::snprintf(buffer, size, pattern.c_str(), width, precision, number);
#pragma GCC diagnostic pop
    }

    UnitSink sink_;
    std::va_list arguments_;
};

}  // namespace

std::uint64_t wideVprintf(std::span<char16_t> buffer, const char16_t* pattern,
                          std::va_list arguments) {
    return WideFormatter(buffer, arguments).run(pattern);
}

}  // namespace brushwork::znString
