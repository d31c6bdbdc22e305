// znString::IString: wide text in 16-bit units, the form of every file name and record field.
#pragma once

#include <compare>
#include <cstdarg>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "brushwork/c_string.h"
#include "brushwork/export.h"
#include "brushwork/zn_string.h"

namespace brushwork::znString {

// How narrow text becomes wide.
enum class Conversion {
    Locale = 0,           // the C runtime's locale; one byte to one unit where that fails
    Utf8 = 1,             // a leading byte order mark is skipped
    Utf8KeepingMark = 2,  // a leading byte order mark becomes U+FEFF
};

// A value: copies are deep. Units are UTF-16; unpaired surrogates are kept as they are. Positions
// and counts are in units; a position beyond the end throws
// std::out_of_range("invalid string position"), growth beyond the limit
// std::length_error("string too long"): both mean a programmer's error.
class BRUSHWORK_API IString final : public String {
  public:
    IString();
    IString(const IString& other);
    IString(IString&& other) noexcept;
    IString(const char16_t* text);  // null makes an empty string
    IString(std::u16string_view text);
    // `ok` becomes true for clean text, and for a null pointer, which makes an empty string. Text
    // that isn't valid still converts, each maximal ill-formed piece of UTF-8 to one U+FFFD.
    explicit IString(const char* text, Conversion conversion = Conversion::Utf8,
                     bool* ok = nullptr);
    explicit IString(std::string_view text, Conversion conversion = Conversion::Utf8,
                     bool* ok = nullptr);
    explicit IString(const CString& text, Conversion conversion = Conversion::Utf8,
                     bool* ok = nullptr);
    explicit IString(char16_t unit);
    ~IString() override;
    IString& operator=(const IString& other);
    IString& operator=(IString&& other) noexcept;

    [[nodiscard]] bool isEmpty() const override;
    [[nodiscard]] std::size_t length() const override;
    [[nodiscard]] const void* data() const override;
    void assignFrom(const String& other) override;  // narrow text is taken as UTF-8
    [[nodiscard]] std::size_t unitSize() const override { return 2; }
    void append(const String& other) override;

    [[nodiscard]] const char16_t* c_str() const;
    [[nodiscard]] std::u16string_view view() const;
    [[nodiscard]] char16_t at(std::size_t index) const;
    // The text as UTF-8, a lone surrogate as EF BF BD: made on request and kept until the string
    // changes. Never null. Not for two threads at once on one object.
    [[nodiscard]] const char* narrow() const;
    [[nodiscard]] std::string toUtf8() const;

    IString& append(std::u16string_view text);
    IString& append(char16_t unit);
    IString& insert(std::size_t position, std::u16string_view text);
    IString& erase(std::size_t position, std::size_t count = npos);
    [[nodiscard]] IString substring(std::size_t position, std::size_t count = npos) const;
    [[nodiscard]] std::size_t find(std::u16string_view text, std::size_t from = 0) const;
    // The last occurrence that begins at `from` or before it.
    [[nodiscard]] std::size_t findLast(std::u16string_view text, std::size_t from = npos) const;
    [[nodiscard]] bool beginsWith(std::u16string_view text) const;
    [[nodiscard]] bool endsWith(std::u16string_view text) const;
    // Every occurrence, from left to right; an empty `from` occurs nowhere.
    IString& replaceAll(std::u16string_view from, std::u16string_view to);
    // Without blanks, tabs and line ends at both sides.
    [[nodiscard]] IString trimmed() const;
    // The pieces between the units of `separators`; empty pieces are left out.
    [[nodiscard]] std::vector<IString> tokens(std::u16string_view separators) const;
    [[nodiscard]] IString upper() const;  // through the C runtime, unit by unit
    [[nodiscard]] IString lower() const;
    void clear();

    // By code unit, without locale and with case: negative, 0 or positive.
    [[nodiscard]] int compare(std::u16string_view other) const;
    // Through the C runtime's lower-case mapping of each unit.
    [[nodiscard]] int compareNoCase(std::u16string_view other) const;

    // Replaces the text by the formatted arguments. In a wide pattern "%s" takes const char16_t*
    // and "%S" const char*; in a narrow pattern, which is widened first, the same holds for the
    // widened pattern. "%ls" and "%ws" are always wide, "%hs" always narrow; the same letters serve
    // "%c". Narrow text is UTF-8. A precision of text counts units written and never splits a pair;
    // "%p" writes all hexadecimal digits of an address in capitals. Otherwise a conversion writes
    // what printf writes. The text ends at the first U+0000. A result of length 0 or a failure
    // ("%n", an unknown or unfinished conversion, more than 2^31 - 1 units, no memory) leaves the
    // string as it was and answers false.
    bool format(const char16_t* pattern, ...);
    bool format(const char* pattern, ...);
    bool formatList(const char16_t* pattern, std::va_list arguments);

    friend bool operator==(const IString& a, const IString& b) { return a.view() == b.view(); }
    friend auto operator<=>(const IString& a, const IString& b) { return a.view() <=> b.view(); }

  private:
    struct Body;
    Body& body();
    std::unique_ptr<Body> body_;  // null stands for the empty text
};

}  // namespace brushwork::znString
