// A command line in one string, as Windows hands it to a program, made from single arguments.
//
// The published rules by which the receiving program splits it again: blanks and tabs separate;
// a quotation mark opens or closes a stretch in which they don't; 2n backslashes before a mark
// stand for n and the mark keeps its meaning, 2n + 1 stand for n and a literal mark; backslashes
// before anything else stand for themselves. The program's own name knows no backslash rule.
//
// Not for programs that split by rules of their own, batch files above all.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace brushwork::platform {

// The argument in the form that splits back into exactly itself; unchanged if it needs no quotes.
[[nodiscard]] std::u16string quoteArgument(std::u16string_view argument);

// The program's name in quotes, then the arguments. Empty if it can't be said: a quotation mark in
// the name, or a zero unit anywhere.
[[nodiscard]] std::u16string commandLine(std::u16string_view program,
                                         const std::vector<std::u16string>& arguments);

}  // namespace brushwork::platform
