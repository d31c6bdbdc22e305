// Checks an object of JSON against the rules of its fields.
#pragma once

#include <array>
#include <map>
#include <nlohmann/json.hpp>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "tools/json_places.h"
#include "tools/op_rules.h"

namespace brushwork::tools {

using Json = nlohmann::json;

// The names that lines have given so far.
using KnownNames = std::map<NameOf, std::set<std::string>>;

struct FieldFault {
    JsonPath path;  // of the value that is wrong, or of the object that lacks something
    std::string cause;
};

// The first fault in the order of the rules; then fields that no rule knows. `alsoAllowed` may
// stand there unchecked.
[[nodiscard]] std::optional<FieldFault> checkFields(const Json& object,
                                                    const std::vector<FieldRule>& rules,
                                                    const KnownNames& names,
                                                    const std::set<std::string>& alsoAllowed = {});

// "; is "..." meant?" with the word that is most like this one; empty if none is.
[[nodiscard]] std::string perhapsMeant(const std::string& word,
                                       const std::vector<std::string>& words);

// "#rrggbb" or "#rrggbbaa" as four numbers of 0 to 1; nothing for other text.
[[nodiscard]] std::optional<std::array<float, 4>> colorFromText(const std::string& text);

}  // namespace brushwork::tools
