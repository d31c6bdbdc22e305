// What an operation of a journal is made of: its fields, and what may stand in each.
//
//     OpRules{"line", "A straight stroke",
//             {needed(point("from")), needed(point("to")), number("pressure", 0, 1)}}
//
// From these rules lines are checked before anything is done.
#pragma once

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <limits>
#include <string>
#include <string_view>
#include <vector>

namespace brushwork::tools {

enum class FieldKind {
    Flag,     // true, false
    Integer,  // low to high
    Number,   // low to high
    Text,     // any string
    File,     // a path, not empty
    Choice,   // one of some words
    Color,    // [red, green, blue] or [red, green, blue, alpha], 0 to 1, or "#rrggbb", "#rrggbbaa"
    Point,    // [x, y]
    Points,   // [[x, y], [x, y, pressure], ...]; low: how many at least
    Box,      // [x, y, width, height], whole numbers, not empty
    Numbers,  // so many numbers: low to high in value, `count` of them
    NumberList,  // whole numbers, low to high in value; any count of them
    NewName,     // a name that a later line may use
    Name,        // one that an earlier line gave
    Names,       // a list of such, not empty
    Record,      // an object with fields of its own
};

// Things that a journal gives names to, each kind for itself.
enum class NameOf { Canvas, Layer, Curve, Shape, Brush, Hash };
[[nodiscard]] std::string_view wordFor(NameOf kind);

struct FieldRule {
    std::string name;
    FieldKind kind = FieldKind::Text;
    bool isNeeded = false;
    double low = 0.0, high = 0.0;
    std::size_t count = 0;
    NameOf nameOf = NameOf::Layer;
    std::vector<std::string> choices;
    std::vector<FieldRule> fields;
    std::int32_t since = 1;  // version of journals from which on it may stand
};

struct OpRules {
    std::string name;
    std::string summary;  // a sentence for a person
    std::vector<FieldRule> fields;
    std::int32_t since = 1;  // version of journals that first has it
};

inline constexpr double farthest = 1e6;  // pixels

[[nodiscard]] FieldRule needed(FieldRule rule);
[[nodiscard]] FieldRule since(std::int32_t version, FieldRule rule);
[[nodiscard]] FieldRule flag(std::string name);
[[nodiscard]] FieldRule integer(std::string name, std::int32_t low, std::int32_t high);
[[nodiscard]] FieldRule number(std::string name, double low, double high);
[[nodiscard]] FieldRule share(std::string name);   // 0 to 1
[[nodiscard]] FieldRule pixels(std::string name);  // a distance, to both sides
[[nodiscard]] FieldRule text(std::string name);
[[nodiscard]] FieldRule file(std::string name);
[[nodiscard]] FieldRule choice(std::string name, std::initializer_list<const char*> words);
[[nodiscard]] FieldRule blendMode(std::string name, bool withPassThrough = false);
[[nodiscard]] FieldRule color(std::string name);
[[nodiscard]] FieldRule point(std::string name);
[[nodiscard]] FieldRule points(std::string name, std::size_t fewest = 1);
[[nodiscard]] FieldRule box(std::string name);
[[nodiscard]] FieldRule numbers(std::string name, std::size_t count, double low, double high);
[[nodiscard]] FieldRule numberList(std::string name, std::int32_t low, std::int32_t high);
[[nodiscard]] FieldRule newName(std::string name, NameOf kind);
[[nodiscard]] FieldRule nameOf(std::string name, NameOf kind);
[[nodiscard]] FieldRule namesOf(std::string name, NameOf kind);
[[nodiscard]] FieldRule record(std::string name, std::vector<FieldRule> fields);
[[nodiscard]] FieldRule layer(std::string name = "layer");  // the active one if it isn't given

}  // namespace brushwork::tools
