// A directory of a test's own, removed with all it holds at the test's end.
#pragma once

#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <string_view>

namespace brushwork {

class ScratchDirectory {
  public:
    ScratchDirectory() {
        std::random_device random;
        do
            path_ = std::filesystem::temp_directory_path() /
                    ("brushwork-test-" + std::to_string(random()));
        while (!std::filesystem::create_directory(path_));
    }
    ScratchDirectory(const ScratchDirectory&) = delete;
    ScratchDirectory& operator=(const ScratchDirectory&) = delete;
    ~ScratchDirectory() {
        std::error_code error;
        std::filesystem::remove_all(path_, error);
    }

    [[nodiscard]] const std::filesystem::path& path() const { return path_; }
    // Names are UTF-8 on every system.
    [[nodiscard]] std::filesystem::path operator/(std::string_view name) const {
        return path_ / std::u8string(name.begin(), name.end());
    }
    [[nodiscard]] std::u16string name(std::string_view name) const {
        return (*this / name).u16string();
    }
    std::filesystem::path put(std::string_view name, std::string_view bytes) const {
        const std::filesystem::path place = *this / name;
        std::ofstream(place, std::ios::binary) << bytes;
        return place;
    }
    [[nodiscard]] std::string get(std::string_view name) const {
        std::ifstream file(*this / name, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }
    [[nodiscard]] std::size_t entryCount() const {
        const std::filesystem::directory_iterator entries(path_);
        return static_cast<std::size_t>(std::distance(begin(entries), end(entries)));
    }

  private:
    std::filesystem::path path_;
};

}  // namespace brushwork
