// Any bytes, as a request record: run through the helper's entry, with paths that stay in a folder
// of the fuzzer's own.
#include <stdlib.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>

#include "bridge/bridge_entry.h"
#include "bridge/request_record.h"
#include "platform/text_codec.h"

namespace {

using namespace brushwork;

struct Folder {
    Folder() {
        char pattern[] = "/tmp/brushwork-fuzz-XXXXXX";
        path = ::mkdtemp(pattern);
        ::setenv("TMPDIR", path.c_str(), 1);
    }
    ~Folder() { std::filesystem::remove_all(path); }
    std::string path;
};

void clear(const std::string& path) {
    for (const auto& entry : std::filesystem::directory_iterator(path))
        std::filesystem::remove_all(entry.path());
}

}  // namespace

// The first byte chooses whether paths are set right; then comes the record; the rest is the
// content of the picture and of the pixel file.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const Folder folder;
    if (size < 1) return 0;
    const std::uint8_t choice = data[0];
    const std::size_t recordBytes = std::min(size - 1, sizeof(RequestRecord));
    RequestRecord record;
    std::memcpy(static_cast<void*>(&record), data + 1, recordBytes);
    const auto name = [&](const char* leaf) {
        return znString::IString(std::string_view(folder.path + "/" + leaf));
    };
    static_cast<void>(record.setResponsePath(name("response")));
    static_cast<void>(record.setPixelsPath(name("pixels")));
    static_cast<void>(record.setImagePath(name("image")));
    const char* const commands[] = {nullptr, "OpenFromFile", "SaveToFile", "GetSize"};
    const char* const formats[] = {"BMP", "JPEG", "PNG", "GIF", "TIFF", "png", ""};
    if (const char* command = commands[choice % 4])
        static_cast<void>(record.setCommand(znString::IString(command)));
    static_cast<void>(record.setFormat(znString::IString(formats[choice / 4 % 7])));
    // A hostile size must fail on its own; a moderate one must not cost the fuzzer its time.
    if (record.params.width > 2000 && record.params.height > 2000) record.params.height = 3;

    static_cast<void>(writeRecord(name("request"), record));
    for (const char* leaf : {"pixels", "image"})
        std::ofstream(folder.path + "/" + leaf, std::ios::binary)
            .write(reinterpret_cast<const char*>(data + 1 + recordBytes),
                   static_cast<std::streamsize>(size - 1 - recordBytes));
    static_cast<void>(
        runBridge({u"helper", u"/file", platform::fromUtf8(folder.path + "/request")}));
    clear(folder.path);
    return 0;
}
