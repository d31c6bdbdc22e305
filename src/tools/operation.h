// Operation: one checked line of a journal.
//
// Its fields keep their rules, so the getters answer without fail: a field that isn't there gives
// the fallback.
#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "brushwork/il_tile.h"
#include "brushwork/stamp_point.h"
#include "tools/field_check.h"

namespace brushwork::tools {

class Operation {
  public:
    // The rules must outlast it.
    Operation(const OpRules& rules, Json fields, std::int32_t line)
        : name_(rules.name), rules_(&rules.fields), fields_(std::move(fields)), line_(line) {}
    Operation(const std::vector<FieldRule>& rules, Json fields)
        : rules_(&rules), fields_(std::move(fields)) {}

    [[nodiscard]] const std::string& name() const { return name_; }
    [[nodiscard]] std::int32_t line() const { return line_; }
    // A record among the fields; without fields if it isn't there.
    [[nodiscard]] Operation record(const std::string& name) const;
    [[nodiscard]] const Json& fields() const { return fields_; }
    [[nodiscard]] bool has(const std::string& name) const { return fields_.contains(name); }

    [[nodiscard]] bool flag(const std::string& name, bool fallback = false) const;
    [[nodiscard]] std::int32_t integer(const std::string& name, std::int32_t fallback = 0) const;
    [[nodiscard]] float number(const std::string& name, float fallback = 0.0f) const;
    [[nodiscard]] double real(const std::string& name, double fallback = 0.0) const;
    [[nodiscard]] std::string text(const std::string& name, const std::string& fallback = {}) const;
    // The place of the word among the field's choices, from 0.
    [[nodiscard]] std::int32_t choice(const std::string& name, std::int32_t fallback = 0) const;
    // A BlendModeId; 0xffff for pass-through.
    [[nodiscard]] std::int32_t mode(const std::string& name, std::int32_t fallback = 0) const;
    [[nodiscard]] std::array<float, 4> color(const std::string& name,
                                             const std::array<float, 4>& fallback = {
                                                 0.0f, 0.0f, 0.0f, 1.0f}) const;
    [[nodiscard]] std::array<float, 2> point(const std::string& name,
                                             const std::array<float, 2>& fallback = {}) const;
    // Pressure is 1 where none is given.
    [[nodiscard]] std::vector<StrokeInputPoint> points(const std::string& name) const;
    [[nodiscard]] ilTile box(const std::string& name) const;
    [[nodiscard]] std::vector<float> numbers(const std::string& name) const;
    [[nodiscard]] std::vector<std::string> names(const std::string& name) const;

  private:
    [[nodiscard]] const FieldRule* ruleOf(const std::string& name) const;

    std::string name_;
    const std::vector<FieldRule>* rules_;
    Json fields_;
    std::int32_t line_ = 0;
};

// The number of a blend mode's name; 0xffff for "PassThrough".
[[nodiscard]] std::int32_t modeNamed(std::string_view name);

}  // namespace brushwork::tools
