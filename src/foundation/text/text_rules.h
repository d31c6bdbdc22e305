// The rules that narrow and wide text share, as templates over the unit.
#pragma once

#include <cstddef>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace brushwork::znString {

template <class Unit>
void checkPosition(std::basic_string_view<Unit> text, std::size_t position) {
    if (position > text.size()) throw std::out_of_range("invalid string position");
}

template <class Unit>
void checkGrowth(const std::basic_string<Unit>& text, std::size_t more) {
    if (more > text.max_size() - text.size()) throw std::length_error("string too long");
}

template <class Unit>
[[nodiscard]] Unit textAt(std::basic_string_view<Unit> text, std::size_t index) {
    if (index >= text.size()) throw std::out_of_range("invalid string position");
    return text[index];
}

[[nodiscard]] constexpr int sign(int value) noexcept {
    return (value > 0) - (value < 0);
}

// By the units that `map` answers, then by length.
template <class Unit, class Map>
[[nodiscard]] int compareMapped(std::basic_string_view<Unit> a, std::basic_string_view<Unit> b,
                                Map map) {
    for (std::size_t index = 0; index < a.size() && index < b.size(); ++index) {
        const auto left = map(a[index]), right = map(b[index]);
        if (left != right) return left < right ? -1 : 1;
    }
    return (a.size() > b.size()) - (a.size() < b.size());
}

template <class Unit>
[[nodiscard]] std::basic_string_view<Unit> trimmedView(std::basic_string_view<Unit> text) {
    const auto isBlank = [](Unit unit) { return unit == ' ' || (unit >= '\t' && unit <= '\r'); };
    while (!text.empty() && isBlank(text.front())) text.remove_prefix(1);
    while (!text.empty() && isBlank(text.back())) text.remove_suffix(1);
    return text;
}

template <class Text, class Unit>
[[nodiscard]] std::vector<Text> tokensOf(std::basic_string_view<Unit> text,
                                         std::basic_string_view<Unit> separators) {
    std::vector<Text> tokens;
    for (std::size_t begin = text.find_first_not_of(separators); begin != text.npos;) {
        const std::size_t end = text.find_first_of(separators, begin);
        tokens.emplace_back(text.substr(begin, end - begin));
        begin = text.find_first_not_of(separators, end);
    }
    return tokens;
}

}  // namespace brushwork::znString
