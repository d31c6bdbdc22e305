#include "image/swap/swap_place.h"

#include <atomic>
#include <cstdint>
#include <optional>

#include "platform/environment.h"
#include "platform/file_calls.h"
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

// Ten letters that this process hasn't used and another hardly will.
std::u16string someLetters() {
    static std::atomic<std::uint64_t> count{0};
    std::uint64_t mixed = static_cast<std::uint64_t>(platform::fileClock()) << 32;
    mixed ^= std::uint64_t{platform::processId()} << 16;
    mixed += ++count;
    // An odd factor and a shift that can be undone keep different numbers different.
    mixed *= 0x9E3779B97F4A7C15U;
    mixed ^= mixed >> 29;
    std::u16string letters;
    for (int i = 0; i < 10; ++i, mixed >>= 5)
        letters += u"0123456789abcdefghijklmnopqrstuv"[mixed & 31];
    return letters;
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
    std::u16string start(directory);
    const bool ended =
        start.empty() || start.back() == u'/' || start.back() == platform::pathSeparator();
    if (!ended) start += platform::pathSeparator();
    start += prefix;
    for (int attempt = 0; attempt < 100; ++attempt) {
        std::u16string name = start + someLetters();
        if (platform::toUtf8(name).size() > longestSwapName) return {};
        platform::FileStatus status;
        if (!platform::statFile(name, status).ok()) return name;
    }
    return {};
}

}  // namespace brushwork
