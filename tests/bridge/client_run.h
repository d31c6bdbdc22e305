// The client against the real helper, or against one that misbehaves.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "bridge_run.h"
#include "brushwork/bridge_client.h"
#include "image/chain/il_image.h"

namespace brushwork::test {

// For as long as it lives, requests go to this program.
class HelperProgram {
  public:
    explicit HelperProgram(const std::string& path = BRUSHWORK_HELPER) {
        setBridgeProgram(wide(path));
    }
    HelperProgram(const HelperProgram&) = delete;
    HelperProgram& operator=(const HelperProgram&) = delete;
    ~HelperProgram() { setBridgeProgram({}); }
};

// A helper that is a few lines of shell. "$2" is the request's path, "$answer" the response's.
inline std::string shellHelper(const TempFolder& folder, const std::string& lines) {
    const std::string path = folder.file("helper.sh");
    std::ofstream(path) << "#!/bin/sh\n"
                           "answer=$(dd if=\"$2\" bs=1 skip=240 count=520 2>/dev/null |"
                           " tr -d '\\000')\n"
                        << lines << "\n";
    std::filesystem::permissions(path, std::filesystem::perms::owner_all);
    return path;
}

// The bytes of an image's plane 0, rows from the bottom.
inline std::vector<std::uint8_t> pixelsOf(ilImage& image) {
    const ilTile box = flatTile(0, 0, image.width(), image.height());
    std::vector<std::uint8_t> pixels(static_cast<std::size_t>(box.nx) *
                                     static_cast<std::size_t>(box.ny) *
                                     static_cast<std::size_t>(image.channels()));
    EXPECT_EQ(image.readRegion(box, pixels.data(), box), ImageOk);
    return pixels;
}

}  // namespace brushwork::test
