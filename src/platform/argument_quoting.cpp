#include "platform/argument_quoting.h"

#include <algorithm>
#include <cstddef>

namespace brushwork::platform {

namespace {

// The rules name blanks and tabs; some splitters also end an argument at other white space.
constexpr std::u16string_view unitsInNeedOfQuotes = u" \t\n\v\f\r\"";

bool holdsZero(std::u16string_view text) {
    return text.find(u'\0') != text.npos;
}

}  // namespace

std::u16string quoteArgument(std::u16string_view argument) {
    if (!argument.empty() && argument.find_first_of(unitsInNeedOfQuotes) == argument.npos)
        return std::u16string(argument);
    std::u16string quoted(1, u'"');
    std::size_t backslashes = 0;
    for (const char16_t unit : argument) {
        // Backslashes have been written once already; before a mark they count double.
        if (unit == u'"') quoted.append(backslashes + 1, u'\\');
        backslashes = unit == u'\\' ? backslashes + 1 : 0;
        quoted += unit;
    }
    quoted.append(backslashes, u'\\');
    quoted += u'"';
    return quoted;
}

std::u16string commandLine(std::u16string_view program,
                           const std::vector<std::u16string>& arguments) {
    if (program.find(u'"') != program.npos || holdsZero(program)) return {};
    if (std::any_of(arguments.begin(), arguments.end(), holdsZero)) return {};
    std::u16string line = u'"' + std::u16string(program) + u'"';
    for (const auto& argument : arguments) line += u' ' + quoteArgument(argument);
    return line;
}

}  // namespace brushwork::platform
