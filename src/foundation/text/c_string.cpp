#include "brushwork/c_string.h"

#include <cctype>
#include <cstdio>
#include <new>
#include <utility>

#include "foundation/text/text_rules.h"
#include "platform/text_codec.h"

namespace brushwork::znString {

CString::CString() = default;
CString::CString(const CString& other) : CString(other.view()) {}
CString::CString(CString&& other) noexcept = default;
CString::CString(const char* text) : CString(text ? std::string_view(text) : std::string_view()) {}
CString::CString(std::string_view text) {
    append(text);
}
CString::CString(char unit) : CString(std::string_view(&unit, 1)) {}
CString::~CString() = default;

CString& CString::operator=(const CString& other) {
    if (this != &other) *this = CString(other);
    return *this;
}

CString& CString::operator=(CString&& other) noexcept = default;

std::string& CString::body() {
    if (!body_) body_ = std::make_unique<std::string>();
    return *body_;
}

bool CString::isEmpty() const {
    return view().empty();
}

std::size_t CString::length() const {
    return view().size();
}

const void* CString::data() const {
    return c_str();
}

void CString::assignFrom(const String& other) {
    CString copy;
    copy.append(other);
    *this = std::move(copy);
}

void CString::append(const String& other) {
    if (other.unitSize() == unitSize()) {
        append(std::string_view(static_cast<const char*>(other.data()), other.length()));
    } else {
        const auto* units = static_cast<const char16_t*>(other.data());
        append(std::string_view(platform::toUtf8({units, other.length()})));
    }
}

const char* CString::c_str() const {
    return body_ ? body_->c_str() : "";
}

std::string_view CString::view() const {
    return body_ ? std::string_view(*body_) : std::string_view();
}

char CString::at(std::size_t index) const {
    return textAt(view(), index);
}

CString& CString::append(std::string_view text) {
    if (text.empty()) return *this;
    checkGrowth(body(), text.size());
    body().append(text);
    return *this;
}

CString& CString::insert(std::size_t position, std::string_view text) {
    checkPosition(view(), position);
    checkGrowth(body(), text.size());
    body().insert(position, text);
    return *this;
}

CString& CString::erase(std::size_t position, std::size_t count) {
    checkPosition(view(), position);
    body().erase(position, count);
    return *this;
}

CString CString::substring(std::size_t position, std::size_t count) const {
    checkPosition(view(), position);
    return CString(view().substr(position, count));
}

std::size_t CString::find(std::string_view text, std::size_t from) const {
    return view().find(text, from);
}

std::size_t CString::findLast(std::string_view text, std::size_t from) const {
    return view().rfind(text, from);
}

CString CString::trimmed() const {
    return CString(trimmedView(view()));
}

std::vector<CString> CString::tokens(std::string_view separators) const {
    return tokensOf<CString>(view(), separators);
}

CString CString::upper() const {
    CString result(*this);
    for (char& unit : result.body())
        unit = static_cast<char>(std::toupper(static_cast<unsigned char>(unit)));
    return result;
}

CString CString::lower() const {
    CString result(*this);
    for (char& unit : result.body())
        unit = static_cast<char>(std::tolower(static_cast<unsigned char>(unit)));
    return result;
}

void CString::clear() {
    body_.reset();
}

int CString::compare(std::string_view other) const {
    return sign(view().compare(other));
}

int CString::compareNoCase(std::string_view other) const {
    return compareMapped(view(), other,
                         [](char unit) { return std::tolower(static_cast<unsigned char>(unit)); });
}

bool CString::format(const char* pattern, ...) {
    std::va_list arguments;
    va_start(arguments, pattern);
    const bool done = formatList(pattern, arguments);
    va_end(arguments);
    return done;
}

bool CString::formatList(const char* pattern, std::va_list arguments) try {
    if (!pattern) return false;
    std::va_list copy;
    va_copy(copy, arguments);
    const int length = std::vsnprintf(nullptr, 0, pattern, copy);
    va_end(copy);
    if (length <= 0) return false;
    std::string text(static_cast<std::size_t>(length) + 1, '\0');
    if (std::vsnprintf(text.data(), text.size(), pattern, arguments) < 0) return false;
    text.resize(text.find('\0'));
    if (text.empty()) return false;
    body() = std::move(text);
    return true;
} catch (const std::bad_alloc&) {
    return false;
}

}  // namespace brushwork::znString
