// Text at the edge of the system: UTF-8 and locale bytes against 16-bit units.
//
// Nothing here fails. Bytes that aren't valid become U+FFFD, one for each maximal ill-formed piece
// (the longest start of a valid sequence, or else one byte); an unpaired surrogate becomes the
// bytes EF BF BD. What was valid comes back unchanged from a round trip, U+0000 included.
#pragma once

#include <string>
#include <string_view>

namespace brushwork::platform {

inline constexpr char32_t replacementCharacter = 0xFFFD;

// Decodes the character or ill-formed piece at `at`, which must stand before `end`, and moves `at`
// behind it. Reads no byte behind one that can't continue the sequence, so that a terminator stops
// it; text that has one may go without an `end` (null). An ill-formed piece answers U+FFFD and
// clears `clean`, which nothing here sets.
[[nodiscard]] char32_t nextUtf8(const char*& at, const char* end, bool& clean) noexcept;

// `character` as one or two units; a surrogate value stays as it is.
void appendUnits(std::u16string& text, char32_t character);

// A byte order mark is text like any other. `clean` tells whether all bytes were valid.
[[nodiscard]] std::u16string fromUtf8(std::string_view bytes, bool* clean = nullptr);
[[nodiscard]] std::string toUtf8(std::u16string_view units);

// Bytes in the encoding of the process's locale. Where the system's names are UTF-8, bytes that
// are valid UTF-8 are taken as such whatever the locale says, so that no name is damaged. Bytes
// that can't be converted become one unit each, and `clean` tells so.
[[nodiscard]] std::u16string fromLocale(std::string_view bytes, bool* clean = nullptr);

}  // namespace brushwork::platform
