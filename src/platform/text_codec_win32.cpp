#include <cwchar>
#include <optional>

#include "platform/text_codec.h"

namespace brushwork::platform {

namespace {

// wchar_t is the 16-bit unit here, so what the runtime gives is copied as it is.
std::optional<std::u16string> throughRuntime(std::string_view bytes) {
    std::u16string text;
    std::mbstate_t state{};
    while (!bytes.empty()) {
        wchar_t unit = 0;
        const std::size_t used = std::mbrtowc(&unit, bytes.data(), bytes.size(), &state);
        if (used > bytes.size()) return std::nullopt;
        text += static_cast<char16_t>(unit);
        bytes.remove_prefix(used ? used : 1);  // a terminator counts as no byte
    }
    return text;
}

}  // namespace

std::u16string fromLocale(std::string_view bytes, bool* clean) {
    auto text = throughRuntime(bytes);
    if (clean) *clean = text.has_value();
    if (text) return *std::move(text);
    std::u16string plain;
    for (const char byte : bytes) plain += static_cast<unsigned char>(byte);
    return plain;
}

}  // namespace brushwork::platform
