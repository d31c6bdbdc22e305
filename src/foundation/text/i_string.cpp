#include "brushwork/i_string.h"

#include <cstdint>
#include <cwctype>
#include <utility>

#include "foundation/text/i_string_body.h"
#include "foundation/text/text_rules.h"

namespace brushwork::znString {

namespace {

char16_t mapped(char16_t unit, std::wint_t (*map)(std::wint_t)) {
    const std::uint32_t result = map(unit);
    return result <= 0xFFFF ? static_cast<char16_t>(result) : unit;
}

char16_t lowerUnit(char16_t unit) {
    return mapped(unit, std::towlower);
}

}  // namespace

IString::IString() = default;
IString::IString(const IString& other) : String(other) {
    append(other.view());
}
IString::IString(IString&& other) noexcept = default;
IString::IString(const char16_t* text)
    : IString(text ? std::u16string_view(text) : std::u16string_view()) {}
IString::IString(std::u16string_view text) {
    append(text);
}
IString::IString(char16_t unit) : IString(std::u16string_view(&unit, 1)) {}
IString::~IString() = default;

IString& IString::operator=(const IString& other) {
    if (this != &other) *this = IString(other);
    return *this;
}

IString& IString::operator=(IString&& other) noexcept = default;

IString::Body& IString::body() {
    if (!body_) body_ = std::make_unique<Body>();
    body_->narrow.reset();
    return *body_;
}

bool IString::isEmpty() const {
    return view().empty();
}

std::size_t IString::length() const {
    return view().size();
}

const void* IString::data() const {
    return c_str();
}

const char16_t* IString::c_str() const {
    return body_ ? body_->text.c_str() : u"";
}

std::u16string_view IString::view() const {
    return body_ ? std::u16string_view(body_->text) : std::u16string_view();
}

char16_t IString::at(std::size_t index) const {
    return textAt(view(), index);
}

IString& IString::append(std::u16string_view text) {
    if (text.empty()) return *this;
    std::u16string& own = body().text;
    checkGrowth(own, text.size());
    own.append(text);
    return *this;
}

IString& IString::append(char16_t unit) {
    return append(std::u16string_view(&unit, 1));
}

IString& IString::insert(std::size_t position, std::u16string_view text) {
    checkPosition(view(), position);
    std::u16string& own = body().text;
    checkGrowth(own, text.size());
    own.insert(position, text);
    return *this;
}

IString& IString::erase(std::size_t position, std::size_t count) {
    checkPosition(view(), position);
    body().text.erase(position, count);
    return *this;
}

IString IString::substring(std::size_t position, std::size_t count) const {
    checkPosition(view(), position);
    return IString(view().substr(position, count));
}

std::size_t IString::find(std::u16string_view text, std::size_t from) const {
    return view().find(text, from);
}

std::size_t IString::findLast(std::u16string_view text, std::size_t from) const {
    return view().rfind(text, from);
}

bool IString::beginsWith(std::u16string_view text) const {
    return view().starts_with(text);
}

bool IString::endsWith(std::u16string_view text) const {
    return view().ends_with(text);
}

IString& IString::replaceAll(std::u16string_view from, std::u16string_view to) {
    if (from.empty()) return *this;
    IString result;
    const std::u16string_view text = view();
    std::size_t done = 0;
    for (std::size_t found = text.find(from); found != npos; found = text.find(from, done)) {
        result.append(text.substr(done, found - done)).append(to);
        done = found + from.size();
    }
    result.append(text.substr(done));
    return *this = std::move(result);
}

IString IString::trimmed() const {
    return IString(trimmedView(view()));
}

std::vector<IString> IString::tokens(std::u16string_view separators) const {
    return tokensOf<IString>(view(), separators);
}

IString IString::upper() const {
    IString result(*this);
    for (char16_t& unit : result.body().text) unit = mapped(unit, std::towupper);
    return result;
}

IString IString::lower() const {
    IString result(*this);
    for (char16_t& unit : result.body().text) unit = lowerUnit(unit);
    return result;
}

void IString::clear() {
    body_.reset();
}

int IString::compare(std::u16string_view other) const {
    return sign(view().compare(other));
}

int IString::compareNoCase(std::u16string_view other) const {
    return compareMapped(view(), other, lowerUnit);
}

}  // namespace brushwork::znString
