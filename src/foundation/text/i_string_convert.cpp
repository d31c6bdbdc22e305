#include <utility>

#include "brushwork/i_string.h"
#include "foundation/text/i_string_body.h"
#include "platform/text_codec.h"

namespace brushwork::znString {

namespace {

constexpr char16_t byteOrderMark = 0xFEFF;

std::u16string widened(std::string_view text, Conversion conversion, bool* ok) {
    if (conversion == Conversion::Locale) return platform::fromLocale(text, ok);
    std::u16string units = platform::fromUtf8(text, ok);
    if (conversion == Conversion::Utf8 && units.starts_with(byteOrderMark)) units.erase(0, 1);
    return units;
}

std::u16string_view wideView(const String& text) {
    return {static_cast<const char16_t*>(text.data()), text.length()};
}

std::string_view narrowView(const String& text) {
    return {static_cast<const char*>(text.data()), text.length()};
}

}  // namespace

IString::IString(const char* text, Conversion conversion, bool* ok)
    : IString(text ? std::string_view(text) : std::string_view(), conversion, ok) {}

IString::IString(std::string_view text, Conversion conversion, bool* ok) {
    std::u16string units = widened(text, conversion, ok);
    if (!units.empty()) body().text = std::move(units);
}

IString::IString(const CString& text, Conversion conversion, bool* ok)
    : IString(text.view(), conversion, ok) {}

void IString::assignFrom(const String& other) {
    *this = other.unitSize() == unitSize() ? IString(wideView(other)) : IString(narrowView(other));
}

void IString::append(const String& other) {
    if (other.unitSize() == unitSize())
        append(wideView(other));
    else
        append(IString(narrowView(other), Conversion::Utf8KeepingMark).view());
}

const char* IString::narrow() const {
    if (!body_) return "";
    if (!body_->narrow) body_->narrow = toUtf8();
    return body_->narrow->c_str();
}

std::string IString::toUtf8() const {
    return platform::toUtf8(view());
}

}  // namespace brushwork::znString
