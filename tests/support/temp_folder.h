// A scratch directory that is also where the code under test puts its temporary files, for as long
// as the object lives.
#pragma once

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>
#include <string>
#include <vector>

#include "platform/environment.h"
#include "support/scratch_directory.h"

namespace brushwork::test {

class TempFolder {
  public:
    TempFolder() {
        before_ = platform::environmentText(variable);
        std::filesystem::create_directory(temporary());
        platform::setEnvironmentText(variable, temporary().u16string());
    }
    TempFolder(const TempFolder&) = delete;
    TempFolder& operator=(const TempFolder&) = delete;
    ~TempFolder() {
        if (before_)
            platform::setEnvironmentText(variable, *before_);
        else
            platform::unsetEnvironmentVariable(variable);
    }

    // Where temporary files of the code under test go.
    [[nodiscard]] std::filesystem::path temporary() const { return directory_ / "tmp"; }
    [[nodiscard]] std::string file(const std::string& name) const {
        return (directory_ / name).string();
    }
    // Names of what the code under test left in temporary().
    [[nodiscard]] std::vector<std::string> leftovers() const {
        std::vector<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(temporary()))
            names.push_back(entry.path().filename().string());
        std::sort(names.begin(), names.end());
        return names;
    }

  private:
#ifdef _WIN32
    static constexpr const char* variable = "TMP";
#else
    static constexpr const char* variable = "TMPDIR";
#endif

    ScratchDirectory directory_;
    std::optional<std::u16string> before_;
};

inline std::vector<std::uint8_t> readBytes(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

inline void writeBytes(const std::string& path, const std::vector<std::uint8_t>& bytes) {
    std::ofstream(path, std::ios::binary)
        .write(reinterpret_cast<const char*>(bytes.data()),
               static_cast<std::streamsize>(bytes.size()));
}

}  // namespace brushwork::test
