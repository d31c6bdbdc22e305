#include "tools/operation.h"

#include <algorithm>

#include "brushwork/blend_mode_table.h"

namespace brushwork::tools {
const FieldRule* Operation::ruleOf(const std::string& name) const {
    const auto found = std::find_if(rules_->begin(), rules_->end(),
                                    [&](const FieldRule& rule) { return rule.name == name; });
    return found == rules_->end() ? nullptr : &*found;
}

Operation Operation::record(const std::string& name) const {
    const FieldRule* const rule = ruleOf(name);
    return Operation(rule ? rule->fields : *rules_, has(name) ? fields_[name] : Json::object());
}

bool Operation::flag(const std::string& name, bool fallback) const {
    return has(name) ? fields_[name].get<bool>() : fallback;
}

std::int32_t Operation::integer(const std::string& name, std::int32_t fallback) const {
    return has(name) ? fields_[name].get<std::int32_t>() : fallback;
}

float Operation::number(const std::string& name, float fallback) const {
    return has(name) ? fields_[name].get<float>() : fallback;
}

double Operation::real(const std::string& name, double fallback) const {
    return has(name) ? fields_[name].get<double>() : fallback;
}

std::string Operation::text(const std::string& name, const std::string& fallback) const {
    return has(name) ? fields_[name].get<std::string>() : fallback;
}

std::int32_t Operation::choice(const std::string& name, std::int32_t fallback) const {
    const FieldRule* const rule = ruleOf(name);
    if (!rule || !has(name)) return fallback;
    const auto found = std::find(rule->choices.begin(), rule->choices.end(), text(name));
    return static_cast<std::int32_t>(found - rule->choices.begin());
}

std::int32_t Operation::mode(const std::string& name, std::int32_t fallback) const {
    return has(name) ? modeNamed(text(name)) : fallback;
}

std::array<float, 4> Operation::color(const std::string& name,
                                      const std::array<float, 4>& fallback) const {
    if (!has(name)) return fallback;
    const Json& value = fields_[name];
    if (value.is_string()) return colorFromText(value.get<std::string>()).value_or(fallback);
    std::array<float, 4> color{0.0f, 0.0f, 0.0f, 1.0f};
    for (std::size_t n = 0; n < value.size(); ++n) color[n] = value[n].get<float>();
    return color;
}

std::array<float, 2> Operation::point(const std::string& name,
                                      const std::array<float, 2>& fallback) const {
    if (!has(name)) return fallback;
    return {fields_[name][0].get<float>(), fields_[name][1].get<float>()};
}

std::vector<StrokeInputPoint> Operation::points(const std::string& name) const {
    std::vector<StrokeInputPoint> all;
    if (!has(name)) return all;
    for (const Json& place : fields_[name]) {
        StrokeInputPoint point;
        point.x = place[0].get<float>();
        point.y = place[1].get<float>();
        point.pressure = place.size() > 2 ? place[2].get<float>() : 1.0f;
        all.push_back(point);
    }
    return all;
}

ilTile Operation::box(const std::string& name) const {
    if (!has(name)) return {};
    const auto number = [&](std::size_t n) { return fields_[name][n].get<std::int32_t>(); };
    return flatTile(number(0), number(1), number(2), number(3));
}

std::vector<float> Operation::numbers(const std::string& name) const {
    return has(name) ? fields_[name].get<std::vector<float>>() : std::vector<float>();
}

std::vector<std::string> Operation::names(const std::string& name) const {
    return has(name) ? fields_[name].get<std::vector<std::string>>() : std::vector<std::string>();
}

std::int32_t modeNamed(std::string_view name) {
#define BRUSHWORK_MODE_NUMBER(mode, id, type) \
    if (name == #mode) return id;
    BRUSHWORK_BLEND_MODES(BRUSHWORK_MODE_NUMBER)
#undef BRUSHWORK_MODE_NUMBER
    return 0xffff;
}

}  // namespace brushwork::tools
