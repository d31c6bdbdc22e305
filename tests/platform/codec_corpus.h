// The wider corpus of real pictures, present if BRUSHWORK_CORPUS names its directory.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <initializer_list>
#include <iterator>
#include <string>
#include <vector>

namespace brushwork::platform::test {

inline std::vector<std::uint8_t> readWhole(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

// All files with that extension (".png") below images/<folder> for each folder, sorted; none
// without a corpus.
inline std::vector<std::filesystem::path> corpusFiles(std::initializer_list<const char*> folders,
                                                      const std::string& extension) {
    std::vector<std::filesystem::path> files;
    const char* corpus = std::getenv("BRUSHWORK_CORPUS");
    if (corpus == nullptr || *corpus == 0) return files;
    for (const char* folder : folders) {
        const auto root = std::filesystem::path(corpus) / "images" / folder;
        if (!std::filesystem::exists(root)) continue;
        for (const auto& entry : std::filesystem::recursive_directory_iterator(root)) {
            if (entry.path().extension() == extension) files.push_back(entry.path());
        }
    }
    std::sort(files.begin(), files.end());
    return files;
}

// Both take pixels in blue, green, red, alpha order, and the same in red, green, blue, alpha order.
inline std::size_t differencesAbove(int limit, const std::vector<std::uint8_t>& bgra,
                                    const std::vector<std::uint8_t>& rgba) {
    if (bgra.size() != rgba.size()) return std::max(bgra.size(), rgba.size());
    static constexpr std::size_t place[4] = {2, 1, 0, 3};
    std::size_t count = 0;
    for (std::size_t i = 0; i < bgra.size(); ++i) {
        if (std::abs(bgra[i] - rgba[i - i % 4 + place[i % 4]]) > limit) ++count;
    }
    return count;
}

// 256 if the sizes differ.
inline int largestDifference(const std::vector<std::uint8_t>& bgra,
                             const std::vector<std::uint8_t>& rgba) {
    if (bgra.size() != rgba.size()) return 256;
    int largest = 0;
    while (differencesAbove(largest, bgra, rgba) > 0) ++largest;
    return largest;
}

}  // namespace brushwork::platform::test
