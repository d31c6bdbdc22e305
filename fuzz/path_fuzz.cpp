// Any text, as a path: normalised, parsed, joined, with both separators. The rules of a normalised
// path are checked on the way.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "brushwork/filename.h"

namespace {

using brushwork::znOS::Filename;
using brushwork::znString::IString;

void check(bool holds) {
    if (!holds) std::abort();
}

void examine(const Filename& name) {
    const std::u16string_view path = name.path().view();
    const char16_t other = name.separator() == u'/' ? u'\\' : u'/';
    check(path.find(other) == std::u16string_view::npos);
    const std::u16string pair(2, name.separator());
    check(path.size() < 2 || path.find(pair, 1) == std::u16string_view::npos);
    check(name.directory().length() + name.name().length() <= path.size() + 1);
    check(name.baseName().length() + name.extension().length() <= name.name().length());
    static_cast<void>(name.isAbsolute());
    static_cast<void>(name.isDeviceName());
    // Normal once, normal for good.
    check(Filename(name.path(), name.separator()).path() == name.path());
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::u16string units;
    for (std::size_t i = 0; i < size; ++i) {
        // Mostly the units that mean something to a path.
        static constexpr char16_t special[] = u"\\/.:aC";
        units += data[i] < 192 ? special[data[i] % 6] : static_cast<char16_t>(data[i] * 257U);
    }
    const IString text{std::u16string_view(units)};
    const std::size_t half = units.size() / 2;
    for (const char16_t separator : {u'/', u'\\'}) {
        examine(Filename(text, separator));
        const Filename joined(text.substring(0, half), text.substring(half), separator);
        if (!text.substring(half).isEmpty()) static_cast<void>(joined.directory());
    }
    return 0;
}
