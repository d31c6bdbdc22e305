#include "tools/field_check.h"

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <utility>

namespace brushwork::tools {
namespace {

using Fault = std::optional<FieldFault>;

constexpr std::size_t longestName = 200;

FieldFault fault(std::string cause, JsonPath path = {}) {
    return {std::move(path), std::move(cause)};
}

std::string shown(double number) {
    char text[40];
    std::snprintf(text, sizeof text, "%.9g", number);
    return text;
}

std::string rangeWords(const FieldRule& rule, const char* what) {
    return std::string(what) + " from " + shown(rule.low) + " to " + shown(rule.high) +
           " is wanted";
}

bool inRange(const Json& value, double low, double high) {
    if (!value.is_number()) return false;
    const double number = value.get<double>();
    return number >= low && number <= high;
}

// What a word was probably meant to be is more help than all that it could be.
std::string nearest(const std::string& word, const std::vector<std::string>& choices) {
    std::string best;
    std::size_t least = 3;
    for (const std::string& choice : choices) {
        std::vector<std::size_t> row(choice.size() + 1);
        for (std::size_t n = 0; n < row.size(); ++n) row[n] = n;
        for (std::size_t i = 0; i < word.size(); ++i) {
            std::size_t corner = row[0]++;
            for (std::size_t j = 0; j < choice.size(); ++j) {
                const std::size_t kept = std::tolower(static_cast<unsigned char>(word[i])) ==
                                                 std::tolower(static_cast<unsigned char>(choice[j]))
                                             ? corner
                                             : corner + 1;
                corner = row[j + 1];
                row[j + 1] = std::min({kept, row[j] + 1, corner + 1});
            }
        }
        if (row.back() < least) {
            least = row.back();
            best = choice;
        }
    }
    return best;
}

Fault checkChoice(const Json& value, const FieldRule& rule) {
    std::string all;
    for (const std::string& word : rule.choices) all += (all.empty() ? "" : ", ") + word;
    if (!value.is_string()) return fault("one of " + all + " is wanted");
    const auto& word = value.get_ref<const std::string&>();
    if (std::find(rule.choices.begin(), rule.choices.end(), word) != rule.choices.end())
        return std::nullopt;
    return fault("\"" + word + "\" is none of " + all);
}

Fault checkList(const Json& value, std::size_t count, double low, double high, const char* words) {
    if (!value.is_array() || value.size() != count) return fault(words);
    for (std::size_t n = 0; n < count; ++n)
        if (!inRange(value[n], low, high))
            return fault("a number from " + shown(low) + " to " + shown(high) + " is wanted", {n});
    return std::nullopt;
}

Fault checkNumberList(const Json& value, const FieldRule& rule) {
    if (!value.is_array()) return fault("a list of whole numbers is wanted");
    for (std::size_t n = 0; n < value.size(); ++n)
        if (!value[n].is_number_integer() || !inRange(value[n], rule.low, rule.high))
            return fault(rangeWords(rule, "a whole number"), {n});
    return std::nullopt;
}

Fault checkColor(const Json& value) {
    const char* const words =
        "a colour is wanted: [red, green, blue] with or without alpha, "
        "or \"#rrggbb\"";
    if (value.is_string())
        return colorFromText(value.get_ref<const std::string&>()) ? Fault() : fault(words);
    return checkList(value, value.size() == 4 ? 4 : 3, 0.0, 1.0, words);
}

Fault checkPoints(const Json& value, const FieldRule& rule) {
    if (!value.is_array() || value.size() < rule.count)
        return fault("a list of " + std::to_string(rule.count) +
                     " or more points is wanted: [[x, y], [x, y, pressure], ...]");
    for (std::size_t n = 0; n < value.size(); ++n) {
        const Json& place = value[n];
        if (!place.is_array() || place.size() < 2 || place.size() > 3 ||
            !inRange(place[0], -farthest, farthest) || !inRange(place[1], -farthest, farthest))
            return fault("a point is wanted: [x, y] or [x, y, pressure]", {n});
        if (place.size() == 3 && !inRange(place[2], 0.0, 1.0))
            return fault("a pressure from 0 to 1 is wanted", {n, std::size_t{2}});
    }
    return std::nullopt;
}

Fault checkBox(const Json& value) {
    const char* const words = "a box is wanted: [x, y, width, height]";
    if (!value.is_array() || value.size() != 4) return fault(words);
    for (std::size_t n = 0; n < 4; ++n) {
        if (!value[n].is_number_integer() || !inRange(value[n], -farthest, farthest))
            return fault("a whole number of pixels is wanted", {n});
        if (n >= 2 && !inRange(value[n], 1.0, farthest))
            return fault("a box is at least one pixel wide and high", {n});
    }
    return std::nullopt;
}

Fault checkKnown(const Json& value, const FieldRule& rule, const KnownNames& names) {
    const std::string what(wordFor(rule.nameOf));
    if (!value.is_string()) return fault("the name of a " + what + " is wanted");
    const auto& name = value.get_ref<const std::string&>();
    const auto known = names.find(rule.nameOf);
    if (known == names.end()) return fault("no line before this one names a " + what);
    if (known->second.count(name) != 0) return std::nullopt;
    const std::vector<std::string> choices(known->second.begin(), known->second.end());
    return fault("no " + what + " is named \"" + name + "\" so far" + perhapsMeant(name, choices));
}

Fault checkNew(const Json& value, const FieldRule& rule, const KnownNames& names) {
    if (!value.is_string() || value.get_ref<const std::string&>().empty() ||
        value.get_ref<const std::string&>().size() > longestName)
        return fault("a name of 1 to " + std::to_string(longestName) + " bytes is wanted");
    const auto& name = value.get_ref<const std::string&>();
    const auto known = names.find(rule.nameOf);
    if (known != names.end() && known->second.count(name) != 0)
        return fault("there is already a " + std::string(wordFor(rule.nameOf)) + " named \"" +
                     name + "\"");
    return std::nullopt;
}

Fault checkNames(const Json& value, const FieldRule& rule, const KnownNames& names) {
    if (!value.is_array() || value.empty())
        return fault("a list of names is wanted, with one at least");
    for (std::size_t n = 0; n < value.size(); ++n)
        if (auto found = checkKnown(value[n], rule, names)) return fault(found->cause, {n});
    return std::nullopt;
}

Fault check(const Json& value, const FieldRule& rule, const KnownNames& names) {
    switch (rule.kind) {
        case FieldKind::Flag:
            return value.is_boolean() ? Fault() : fault("true or false is wanted");
        case FieldKind::Integer:
            if (value.is_number_integer() && inRange(value, rule.low, rule.high)) return {};
            return fault(rangeWords(rule, "a whole number"));
        case FieldKind::Number:
            return inRange(value, rule.low, rule.high) ? Fault()
                                                       : fault(rangeWords(rule, "a number"));
        case FieldKind::Text: return value.is_string() ? Fault() : fault("a text is wanted");
        case FieldKind::File:
            return value.is_string() && !value.get_ref<const std::string&>().empty()
                       ? Fault()
                       : fault("the path of a file is wanted");
        case FieldKind::Choice: return checkChoice(value, rule);
        case FieldKind::Color: return checkColor(value);
        case FieldKind::Point:
            return checkList(value, 2, -farthest, farthest, "a point is wanted: [x, y]");
        case FieldKind::Points: return checkPoints(value, rule);
        case FieldKind::Box: return checkBox(value);
        case FieldKind::Numbers:
            return checkList(
                value, rule.count, rule.low, rule.high,
                ("a list of " + std::to_string(rule.count) + " numbers is wanted").c_str());
        case FieldKind::NumberList: return checkNumberList(value, rule);
        case FieldKind::NewName: return checkNew(value, rule, names);
        case FieldKind::Name: return checkKnown(value, rule, names);
        case FieldKind::Names: return checkNames(value, rule, names);
        case FieldKind::Record: return checkFields(value, rule.fields, names);
    }
    return {};
}

FieldFault within(const std::string& name, FieldFault inner) {
    inner.path.insert(inner.path.begin(), name);
    // Faults of records name their own fields.
    if (inner.cause.find('"') != 0) inner.cause = "\"" + name + "\": " + inner.cause;
    return inner;
}

}  // namespace

std::string perhapsMeant(const std::string& word, const std::vector<std::string>& words) {
    const std::string near = nearest(word.substr(0, longestName), words);
    return near.empty() ? "" : "; is \"" + near + "\" meant?";
}

std::optional<FieldFault> checkFields(const Json& object, const std::vector<FieldRule>& rules,
                                      const KnownNames& names,
                                      const std::set<std::string>& alsoAllowed) {
    if (!object.is_object()) return fault("an object is wanted: {\"name\": value, ...}");
    std::vector<std::string> all(alsoAllowed.begin(), alsoAllowed.end());
    for (const FieldRule& rule : rules) all.push_back(rule.name);
    for (const auto& [name, value] : object.items())
        if (std::find(all.begin(), all.end(), name) == all.end())
            return fault("there is no field \"" + name + "\" here" + perhapsMeant(name, all),
                         {name});
    for (const FieldRule& rule : rules) {
        const auto value = object.find(rule.name);
        if (value == object.end()) {
            if (rule.isNeeded) return fault("\"" + rule.name + "\" is missing");
        } else if (auto found = check(*value, rule, names)) {
            return within(rule.name, std::move(*found));
        }
    }
    return std::nullopt;
}

std::optional<std::array<float, 4>> colorFromText(const std::string& text) {
    if ((text.size() != 7 && text.size() != 9) || text[0] != '#') return std::nullopt;
    std::array<float, 4> color{0.0f, 0.0f, 0.0f, 1.0f};
    for (std::size_t n = 0; n < (text.size() - 1) / 2; ++n) {
        const std::string pair = text.substr(1 + 2 * n, 2);
        if (pair.find_first_not_of("0123456789abcdefABCDEF") != std::string::npos)
            return std::nullopt;
        color[n] = static_cast<float>(std::stoi(pair, nullptr, 16)) / 255.0f;
    }
    return color;
}

}  // namespace brushwork::tools
