#include "platform/codec_tiff_directory.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace brushwork::platform {

namespace {

constexpr std::uint64_t mostEntries = 1024;
// Small values may well share a place, such as the two resolutions.
constexpr std::uint64_t sharedBytes = 64 * 1024;

// Bytes of one value, by the type's number: BYTE 1, ASCII 2, SHORT 3, LONG 4, RATIONAL 5, SBYTE 6,
// UNDEFINED 7, SSHORT 8, SLONG 9, SRATIONAL 10, FLOAT 11, DOUBLE 12, IFD 13, LONG8 16, SLONG8 17,
// IFD8 18. The library skips entries of any other type.
constexpr std::array<std::uint8_t, 19> typeBytes{0, 1, 1, 2, 4, 8, 1, 1, 2, 4,
                                                 8, 4, 8, 4, 0, 0, 8, 8, 8};

class Reader {
  public:
    explicit Reader(ByteSource& source) : source_(source) {}

    bool readHeader() {
        std::array<std::uint8_t, 16> head{};
        if (source_.readAt(0, head.data(), head.size()) < 8) return false;
        bigEndian_ = head[0] == 'M';
        if (head[0] != head[1] || (head[0] != 'I' && !bigEndian_)) return false;
        const std::uint64_t version = number(&head[2], 2);
        if (version != 42 && version != 43) return false;
        big_ = version == 43;
        directory_ = big_ ? number(&head[8], 8) : number(&head[4], 4);
        return true;
    }

    bool directoryIsSane() {
        const std::size_t countBytes = big_ ? 8 : 2;
        const std::size_t entryBytes = big_ ? 20 : 12;
        std::array<std::uint8_t, 8> countField{};
        if (source_.readAt(directory_, countField.data(), countBytes) != countBytes) return false;
        const std::uint64_t count = number(countField.data(), countBytes);
        if (count == 0 || count > mostEntries) return false;
        std::vector<std::uint8_t> entries(static_cast<std::size_t>(count) * entryBytes);
        if (source_.readAt(directory_ + countBytes, entries.data(), entries.size()) !=
            entries.size())
            return false;
        std::uint64_t room = source_.size() + sharedBytes;
        for (std::size_t at = 0; at < entries.size(); at += entryBytes) {
            const std::uint64_t type = number(&entries[at + 2], 2);
            const std::uint64_t each = type < typeBytes.size() ? typeBytes[type] : 0;
            const std::uint64_t values = number(&entries[at + 4], big_ ? 8 : 4);
            if (each == 0) continue;
            if (values > room / each) return false;
            room -= values * each;
        }
        return true;
    }

  private:
    std::uint64_t number(const std::uint8_t* at, std::size_t bytes) const {
        std::uint64_t value = 0;
        for (std::size_t i = 0; i < bytes; ++i)
            value = value << 8 | at[bigEndian_ ? i : bytes - 1 - i];
        return value;
    }

    ByteSource& source_;
    bool bigEndian_ = false;
    bool big_ = false;
    std::uint64_t directory_ = 0;
};

}  // namespace

bool tiffDirectoryIsSane(ByteSource& source) {
    Reader reader(source);
    return reader.readHeader() && reader.directoryIsSane();
}

}  // namespace brushwork::platform
