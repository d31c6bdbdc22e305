// znString::CString: narrow text, bytes whose encoding the user of the string knows.
#pragma once

#include <compare>
#include <cstdarg>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "brushwork/export.h"
#include "brushwork/zn_string.h"

namespace brushwork::znString {

// A value: copies are deep. Positions and counts are in bytes; a position beyond the end throws
// std::out_of_range("invalid string position"), growth beyond the limit
// std::length_error("string too long"): both mean a programmer's error.
class BRUSHWORK_API CString final : public String {
  public:
    CString();
    CString(const CString& other);
    CString(CString&& other) noexcept;
    CString(const char* text);  // null makes an empty string
    CString(std::string_view text);
    explicit CString(char unit);
    ~CString() override;
    CString& operator=(const CString& other);
    CString& operator=(CString&& other) noexcept;

    [[nodiscard]] bool isEmpty() const override;
    [[nodiscard]] std::size_t length() const override;
    [[nodiscard]] const void* data() const override;
    void assignFrom(const String& other) override;  // wide text arrives as UTF-8
    [[nodiscard]] std::size_t unitSize() const override { return 1; }
    void append(const String& other) override;

    [[nodiscard]] const char* c_str() const;
    [[nodiscard]] std::string_view view() const;
    [[nodiscard]] char at(std::size_t index) const;

    CString& append(std::string_view text);
    CString& insert(std::size_t position, std::string_view text);
    CString& erase(std::size_t position, std::size_t count = npos);
    [[nodiscard]] CString substring(std::size_t position, std::size_t count = npos) const;
    [[nodiscard]] std::size_t find(std::string_view text, std::size_t from = 0) const;
    // The last occurrence that begins at `from` or before it.
    [[nodiscard]] std::size_t findLast(std::string_view text, std::size_t from = npos) const;
    // Without blanks, tabs and line ends at both sides.
    [[nodiscard]] CString trimmed() const;
    // The pieces between the units of `separators`; empty pieces are left out.
    [[nodiscard]] std::vector<CString> tokens(std::string_view separators) const;
    [[nodiscard]] CString upper() const;  // through the C runtime, unit by unit
    [[nodiscard]] CString lower() const;
    void clear();

    // By code unit, without locale and with case: negative, 0 or positive.
    [[nodiscard]] int compare(std::string_view other) const;
    // Through the C runtime's lower-case mapping of each unit.
    [[nodiscard]] int compareNoCase(std::string_view other) const;

    // Replaces the text by the formatted arguments. A result of length 0 or a failure leaves the
    // string as it was and answers false.
    bool format(const char* pattern, ...) __attribute__((format(printf, 2, 3)));
    bool formatList(const char* pattern, std::va_list arguments)
        __attribute__((format(printf, 2, 0)));

    friend bool operator==(const CString& a, const CString& b) { return a.view() == b.view(); }
    friend auto operator<=>(const CString& a, const CString& b) { return a.view() <=> b.view(); }

  private:
    std::string& body();
    std::unique_ptr<std::string> body_;  // null stands for the empty text
};

}  // namespace brushwork::znString
