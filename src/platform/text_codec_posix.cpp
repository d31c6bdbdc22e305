#include <cwchar>
#include <optional>

#include "platform/text_codec.h"

namespace brushwork::platform {

namespace {

std::optional<std::u16string> throughRuntime(std::string_view bytes) {
    std::u16string text;
    std::mbstate_t state{};
    while (!bytes.empty()) {
        wchar_t character = 0;
        const std::size_t used = std::mbrtowc(&character, bytes.data(), bytes.size(), &state);
        if (used > bytes.size()) return std::nullopt;
        appendUnits(text, static_cast<char32_t>(character));
        bytes.remove_prefix(used ? used : 1);  // a terminator counts as no byte
    }
    return text;
}

}  // namespace

std::u16string fromLocale(std::string_view bytes, bool* clean) {
    bool valid = true;
    std::u16string text = fromUtf8(bytes, &valid);
    if (!valid) {
        auto converted = throughRuntime(bytes);
        valid = converted.has_value();
        text = std::move(converted).value_or(std::u16string());
    }
    if (!valid)
        for (const char byte : bytes) text += static_cast<unsigned char>(byte);
    if (clean) *clean = valid;
    return text;
}

}  // namespace brushwork::platform
