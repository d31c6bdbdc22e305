#include "tools/json_places.h"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <set>

namespace brushwork::tools {
namespace {

// Walks text without recursion, so that no depth of nesting overruns the stack.
class Walker {
  public:
    explicit Walker(std::string_view text) : text_(text) {}

    [[nodiscard]] std::size_t place() const { return at_; }
    [[nodiscard]] char peek() const { return at_ < text_.size() ? text_[at_] : '\0'; }
    void skipBlanks() {
        while (at_ < text_.size() && std::string_view(" \t\r\n").find(text_[at_]) != npos) ++at_;
    }
    void skipOne() {
        if (at_ < text_.size()) ++at_;
    }
    // A string with its quotes.
    std::string_view takeString() {
        const std::size_t start = at_;
        skipOne();
        while (at_ < text_.size() && text_[at_] != '"') at_ += text_[at_] == '\\' ? 2 : 1;
        at_ = std::min(at_ + 1, text_.size());
        return text_.substr(start, at_ - start);
    }
    void skipValue() {
        std::size_t depth = 0;
        do {
            skipBlanks();
            const char unit = peek();
            if (unit == '"') {
                takeString();
            } else {
                if (unit == '{' || unit == '[') ++depth;
                if ((unit == '}' || unit == ']') && depth > 0) --depth;
                skipOne();
                if (depth == 0 && unit != '}' && unit != ']')
                    while (at_ < text_.size() &&
                           std::string_view(",]} \t\r\n").find(peek()) == npos)
                        ++at_;
            }
        } while (depth > 0 && at_ < text_.size());
    }

  private:
    static constexpr auto npos = std::string_view::npos;
    std::string_view text_;
    std::size_t at_ = 0;
};

std::string decoded(std::string_view quoted) {
    const auto value = nlohmann::json::parse(quoted, nullptr, false);
    return value.is_string() ? value.get<std::string>() : std::string(quoted);
}

// From the start of an object or array to that of the wanted value in it.
bool enter(Walker& walk, const std::variant<std::string, std::size_t>& step) {
    const bool isObject = walk.peek() == '{';
    if ((!isObject && walk.peek() != '[') || isObject != std::holds_alternative<std::string>(step))
        return false;
    walk.skipOne();
    for (std::size_t n = 0;; ++n) {
        walk.skipBlanks();
        if (walk.peek() == '}' || walk.peek() == ']' || walk.peek() == '\0') return false;
        bool wanted = !isObject && std::get<std::size_t>(step) == n;
        if (isObject) {
            wanted = decoded(walk.takeString()) == std::get<std::string>(step);
            walk.skipBlanks();
            walk.skipOne();
            walk.skipBlanks();
        }
        if (wanted) return true;
        walk.skipValue();
        walk.skipBlanks();
        if (walk.peek() == ',') walk.skipOne();
    }
}

}  // namespace

std::size_t jsonPlace(std::string_view text, const JsonPath& path) {
    Walker walk(text);
    walk.skipBlanks();
    std::size_t reached = walk.place();
    for (const auto& step : path) {
        if (!enter(walk, step)) break;
        reached = walk.place();
    }
    return reached;
}

// A string is a name where an object is open and a name is due.
std::optional<std::size_t> repeatedName(std::string_view text) {
    struct Level {
        bool isObject;
        std::set<std::string> names;
    };
    std::vector<Level> open;
    bool nameIsDue = false;
    Walker walk(text);
    for (walk.skipBlanks(); walk.peek() != '\0'; walk.skipBlanks()) {
        const char unit = walk.peek();
        const std::size_t place = walk.place();
        if (unit == '"') {
            const std::string_view quoted = walk.takeString();
            if (nameIsDue && !open.empty() && !open.back().names.insert(decoded(quoted)).second)
                return place;
            nameIsDue = false;
            continue;
        }
        if (unit == '{' || unit == '[') open.push_back({unit == '{', {}});
        if ((unit == '}' || unit == ']') && !open.empty()) open.pop_back();
        if (unit == '{' || unit == ',') nameIsDue = !open.empty() && open.back().isObject;
        walk.skipOne();
    }
    return std::nullopt;
}

std::size_t columnOf(std::string_view text, std::size_t byte) {
    const std::string_view before = text.substr(0, std::min(byte, text.size()));
    return 1 + static_cast<std::size_t>(std::count_if(before.begin(), before.end(), [](char unit) {
               return (static_cast<unsigned char>(unit) & 0xC0) != 0x80;
           }));
}

}  // namespace brushwork::tools
