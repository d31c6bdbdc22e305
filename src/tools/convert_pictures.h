// Converting picture files, one or many, with a bounded number of helpers at once.
#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "tools/picture_exchange.h"

namespace brushwork::tools {

struct Conversion {
    std::string input;
    std::string output;
    SaveOptions save;
    bool askBack = false;  // what the written file says of itself is wanted
};

struct Converted {
    std::optional<Failure> failure;
    PictureFacts written;  // with askBack
};

[[nodiscard]] Converted convertPicture(const Conversion& conversion);

// Converts all, at most `jobs` (at least 1) at a time, and goes on past failures. `done` is told of
// each as it ends, one call at a time and from any thread. The answer has the order of the input.
[[nodiscard]] std::vector<Converted> convertPictures(
    const std::vector<Conversion>& conversions, int jobs,
    const std::function<void(std::size_t index, const Converted& result)>& done);

}  // namespace brushwork::tools
