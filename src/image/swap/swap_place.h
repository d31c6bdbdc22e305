// Where swap files stand and what they are called.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace brushwork {

// The directories that are tried, in this order. An empty one is the working directory.
struct SwapDirectories {
    std::u16string first;   // what the environment asks for
    std::u16string second;  // the system's, whatever the environment says
    std::u16string last;    // where there is room if nowhere else is
};

// The value of the first variable that is set, even if to nothing, among ZENON_TEMP_DIR, TMP,
// TEMP, TMPDIR, TMP_DIR, TEMPDIR and TEMP_DIR; without one the second directory. If TMP isn't set
// it is set to that value, for the process and its children, so that whatever asks later finds the
// same directory. For the thread that may set variables.
[[nodiscard]] SwapDirectories swapDirectories();

// Longest name, in bytes of UTF-8.
inline constexpr std::size_t longestSwapName = 256;

// A path of no file yet: the prefix and some letters, in `directory`. Empty if none was found or it
// would be too long. It makes no file; another process may be quicker. The last four letters are a
// sum of the others, so that a name of ours is known later.
[[nodiscard]] std::u16string swapFileName(std::u16string_view directory,
                                          std::u16string_view prefix);

// Removes the swap files in `directory` that processes left behind which were killed; answers how
// many. Files of living processes and of other programs stay.
std::size_t removeAbandonedSwapFiles(std::u16string_view directory);

}  // namespace brushwork
