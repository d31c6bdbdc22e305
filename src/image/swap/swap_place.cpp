#include "image/swap/swap_place.h"

#include <atomic>
#include <cstdint>
#include <optional>
#include <vector>

#include "platform/environment.h"
#include "platform/file_calls.h"
#include "platform/swap_io.h"
#include "platform/text_codec.h"

namespace brushwork {
namespace {

constexpr const char* variables[] = {"ZENON_TEMP_DIR", "TMP",     "TEMP",    "TMPDIR",
                                     "TMP_DIR",        "TEMPDIR", "TEMP_DIR"};

bool hasDrives() {
    return platform::pathSeparator() == u'\\';
}

std::optional<std::u16string> directoryAskedFor() {
    for (const char* variable : variables)
        if (auto value = platform::environmentText(variable)) return value;
    return std::nullopt;
}

constexpr std::u16string_view prefixes[] = {u"SIDTMP", u"SID"};
constexpr std::size_t ownLetters = 8, sumLetters = 4;

std::u16string lettersOf(std::uint64_t bits, std::size_t count) {
    std::u16string letters;
    for (std::size_t i = 0; i < count; ++i, bits >>= 5)
        letters += u"0123456789abcdefghijklmnopqrstuv"[bits & 31];
    return letters;
}

std::u16string sumOf(std::u16string_view letters) {
    std::uint64_t sum = 0x5A17;
    for (const char16_t letter : letters) sum = (sum ^ letter) * 0x9E3779B97F4A7C15U;
    return lettersOf(sum >> 40, sumLetters);
}

// Letters that this process hasn't used and another hardly will, and their sum.
std::u16string someLetters() {
    static std::atomic<std::uint64_t> count{0};
    std::uint64_t mixed = static_cast<std::uint64_t>(platform::fileClock()) << 32;
    mixed ^= std::uint64_t{platform::processId()} << 16;
    mixed += ++count;
    // An odd factor and a shift that can be undone keep different numbers different.
    mixed *= 0x9E3779B97F4A7C15U;
    mixed ^= mixed >> 29;
    const std::u16string letters = lettersOf(mixed, ownLetters);
    return letters + sumOf(letters);
}

bool isSwapFileName(std::u16string_view name) {
    for (const std::u16string_view prefix : prefixes) {
        if (name.substr(0, prefix.size()) != prefix) continue;
        const std::u16string_view letters = name.substr(prefix.size());
        if (letters.size() == ownLetters + sumLetters &&
            letters.substr(ownLetters) == sumOf(letters.substr(0, ownLetters)))
            return true;
    }
    return false;
}

// What a name in the directory begins with; the working directory's begins with nothing.
std::u16string withSeparator(std::u16string_view directory) {
    std::u16string start(directory);
    const bool ended =
        start.empty() || start.back() == u'/' || start.back() == platform::pathSeparator();
    if (!ended) start += platform::pathSeparator();
    return start;
}

}  // namespace

SwapDirectories swapDirectories() {
    SwapDirectories directories;
    directories.second = hasDrives() ? u"C:/TEMP" : u"/tmp";
    directories.last = hasDrives() ? u"C:/" : u"/var/tmp";
    directories.first = directoryAskedFor().value_or(directories.second);
    if (!platform::environmentText("TMP")) platform::setEnvironmentText("TMP", directories.first);
    return directories;
}

std::u16string swapFileName(std::u16string_view directory, std::u16string_view prefix) {
    const std::u16string start = withSeparator(directory).append(prefix);
    for (int attempt = 0; attempt < 100; ++attempt) {
        std::u16string name = start + someLetters();
        if (platform::toUtf8(name).size() > longestSwapName) return {};
        platform::FileStatus status;
        if (!platform::statFile(name, status).ok()) return name;
    }
    return {};
}

std::size_t removeAbandonedSwapFiles(std::u16string_view directory) {
    const std::u16string start = withSeparator(directory.empty() ? u"." : directory);
    std::vector<std::u16string> names;
    if (!platform::listDirectory(start, names).ok()) return 0;
    std::size_t removed = 0;
    for (const std::u16string& name : names)
        if (isSwapFileName(name) && platform::removeIfAbandoned(start + name)) ++removed;
    return removed;
}

}  // namespace brushwork
