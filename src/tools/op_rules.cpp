#include "tools/op_rules.h"

#include <utility>

#include "brushwork/blend_mode_table.h"

namespace brushwork::tools {
namespace {

FieldRule of(std::string name, FieldKind kind, double low = 0.0, double high = 0.0) {
    FieldRule rule;
    rule.name = std::move(name);
    rule.kind = kind;
    rule.low = low;
    rule.high = high;
    return rule;
}

FieldRule naming(std::string name, FieldKind kind, NameOf what) {
    FieldRule rule = of(std::move(name), kind);
    rule.nameOf = what;
    return rule;
}

}  // namespace

std::string_view wordFor(NameOf kind) {
    switch (kind) {
        case NameOf::Canvas: return "canvas";
        case NameOf::Layer: return "layer";
        case NameOf::Curve: return "curve";
        case NameOf::Shape: return "shape";
        case NameOf::Brush: return "brush";
        case NameOf::Hash: return "hash";
    }
    return "";
}

FieldRule needed(FieldRule rule) {
    rule.isNeeded = true;
    return rule;
}

FieldRule since(std::int32_t version, FieldRule rule) {
    rule.since = version;
    return rule;
}

FieldRule flag(std::string name) {
    return of(std::move(name), FieldKind::Flag);
}

FieldRule integer(std::string name, std::int32_t low, std::int32_t high) {
    return of(std::move(name), FieldKind::Integer, low, high);
}

FieldRule number(std::string name, double low, double high) {
    return of(std::move(name), FieldKind::Number, low, high);
}

FieldRule share(std::string name) {
    return number(std::move(name), 0.0, 1.0);
}

FieldRule pixels(std::string name) {
    return number(std::move(name), -farthest, farthest);
}

FieldRule text(std::string name) {
    return of(std::move(name), FieldKind::Text);
}

FieldRule file(std::string name) {
    return of(std::move(name), FieldKind::File);
}

FieldRule choice(std::string name, std::initializer_list<const char*> words) {
    FieldRule rule = of(std::move(name), FieldKind::Choice);
    rule.choices.assign(words.begin(), words.end());
    return rule;
}

FieldRule blendMode(std::string name, bool withPassThrough) {
    FieldRule rule = of(std::move(name), FieldKind::Choice);
#define BRUSHWORK_MODE_WORD(mode, id, type) rule.choices.push_back(#mode);
    BRUSHWORK_BLEND_MODES(BRUSHWORK_MODE_WORD)
#undef BRUSHWORK_MODE_WORD
    if (withPassThrough) rule.choices.push_back("PassThrough");
    return rule;
}

FieldRule color(std::string name) {
    return of(std::move(name), FieldKind::Color);
}

FieldRule point(std::string name) {
    return of(std::move(name), FieldKind::Point);
}

FieldRule points(std::string name, std::size_t fewest) {
    FieldRule rule = of(std::move(name), FieldKind::Points);
    rule.count = fewest;
    return rule;
}

FieldRule box(std::string name) {
    return of(std::move(name), FieldKind::Box);
}

FieldRule numbers(std::string name, std::size_t count, double low, double high) {
    FieldRule rule = of(std::move(name), FieldKind::Numbers, low, high);
    rule.count = count;
    return rule;
}

FieldRule numberList(std::string name, std::int32_t low, std::int32_t high) {
    return of(std::move(name), FieldKind::NumberList, low, high);
}

FieldRule newName(std::string name, NameOf kind) {
    return naming(std::move(name), FieldKind::NewName, kind);
}

FieldRule nameOf(std::string name, NameOf kind) {
    return naming(std::move(name), FieldKind::Name, kind);
}

FieldRule namesOf(std::string name, NameOf kind) {
    return naming(std::move(name), FieldKind::Names, kind);
}

FieldRule record(std::string name, std::vector<FieldRule> fields) {
    FieldRule rule = of(std::move(name), FieldKind::Record);
    rule.fields = std::move(fields);
    return rule;
}

FieldRule layer(std::string name) {
    return nameOf(std::move(name), NameOf::Layer);
}

}  // namespace brushwork::tools
