// TIFF files for tests: put together byte by byte, or written by libtiff into memory.
#pragma once

#include <tiffio.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <map>
#include <utility>
#include <vector>

#include "codec_test_streams.h"

namespace brushwork::platform::test {

// A file of one directory: the chunks first, then the values that don't fit their entry, then the
// directory. It knows nothing of what its tags mean, so it makes broken files as willingly.
struct TiffBuilder {
    struct Entry {
        std::uint16_t type;  // 1 byte, 3 short, 4 long, 5 rational (two values each), 16 long8
        std::vector<std::uint64_t> values;
    };

    bool bigEndian = false;
    bool big = false;
    std::map<std::uint16_t, Entry> entries;  // sorted by tag, as a directory must be
    std::vector<Bytes> chunks;
    std::uint64_t nextDirectory = 0;

    void set(std::uint16_t tag, std::vector<std::uint64_t> values, std::uint16_t type = 3) {
        entries[tag] = {type, std::move(values)};
    }

    void basics(std::uint32_t width, std::uint32_t height, std::vector<std::uint64_t> bits,
                std::uint16_t photometric, std::uint16_t compression = 1) {
        set(256, {width}, 4);
        set(257, {height}, 4);
        set(277, {bits.size()});
        set(258, std::move(bits));
        set(259, {compression});
        set(262, {photometric});
        set(278, {height}, 4);
    }

    // Offsets and byte counts are filled in unless the entries have them already.
    [[nodiscard]] Bytes build(bool tiled = false) const {
        Bytes file(big ? 16 : 8);
        std::vector<std::uint64_t> offsets;
        std::vector<std::uint64_t> counts;
        for (const Bytes& chunk : chunks) {
            offsets.push_back(file.size());
            counts.push_back(chunk.size());
            file.insert(file.end(), chunk.begin(), chunk.end());
        }
        auto all = entries;
        all.insert({static_cast<std::uint16_t>(tiled ? 324 : 273), {4, offsets}});
        all.insert({static_cast<std::uint16_t>(tiled ? 325 : 279), {4, counts}});

        Bytes directory;
        append(directory, all.size(), big ? 8 : 2);
        const std::size_t slot = big ? 8 : 4;
        for (const auto& [tag, entry] : all) {
            const bool pairs = entry.type == 5;
            const std::size_t size = entry.type == 1    ? 1
                                     : entry.type == 3  ? 2
                                     : entry.type == 16 ? 8
                                                        : 4;
            Bytes values;
            for (const std::uint64_t value : entry.values) append(values, value, size);
            append(directory, tag, 2);
            append(directory, entry.type, 2);
            append(directory, entry.values.size() / (pairs ? 2 : 1), slot);
            if (values.size() > slot) {
                append(directory, file.size(), slot);
                file.insert(file.end(), values.begin(), values.end());
            } else {
                values.resize(slot);
                directory.insert(directory.end(), values.begin(), values.end());
            }
        }
        append(directory, nextDirectory, slot);

        Bytes head{static_cast<std::uint8_t>(bigEndian ? 'M' : 'I')};
        head.push_back(head[0]);
        append(head, big ? 43 : 42, 2);
        if (big) append(head, 8, 2);
        if (big) append(head, 0, 2);
        append(head, file.size(), slot);
        std::copy(head.begin(), head.end(), file.begin());
        file.insert(file.end(), directory.begin(), directory.end());
        return file;
    }

    void append(Bytes& bytes, std::uint64_t value, std::size_t size) const {
        for (std::size_t i = 0; i < size; ++i)
            bytes.push_back(static_cast<std::uint8_t>(value >> 8 * (bigEndian ? size - 1 - i : i)));
    }
};

// libtiff on a file in memory, to write pictures with.
class MemoryTiff {
  public:
    explicit MemoryTiff(const char* mode)
        : tiff_(TIFFClientOpen("memory", mode, this, read, write, seek, close, size, nullptr,
                               nullptr)) {}
    ~MemoryTiff() { finish(); }
    MemoryTiff(const MemoryTiff&) = delete;
    MemoryTiff& operator=(const MemoryTiff&) = delete;

    [[nodiscard]] TIFF* get() const { return tiff_; }
    Bytes finish() {
        if (tiff_ != nullptr) TIFFClose(std::exchange(tiff_, nullptr));
        return file_.bytes;
    }

  private:
    static MemoryTiff& self(thandle_t handle) { return *static_cast<MemoryTiff*>(handle); }
    static tmsize_t read(thandle_t handle, void* buffer, tmsize_t count) {
        MemoryTiff& me = self(handle);
        const auto got = me.file_.readAt(me.at_, buffer, static_cast<std::size_t>(count));
        me.at_ += got;
        return static_cast<tmsize_t>(got);
    }
    static tmsize_t write(thandle_t handle, void* buffer, tmsize_t count) {
        MemoryTiff& me = self(handle);
        if (!me.file_.writeAt(me.at_, buffer, static_cast<std::size_t>(count))) return 0;
        me.at_ += static_cast<std::uint64_t>(count);
        return count;
    }
    static toff_t seek(thandle_t handle, toff_t offset, int whence) {
        MemoryTiff& me = self(handle);
        const toff_t from = whence == SEEK_SET ? 0 : whence == SEEK_CUR ? me.at_ : me.file_.size();
        return me.at_ = from + offset;
    }
    static int close(thandle_t) { return 0; }
    static toff_t size(thandle_t handle) { return self(handle).file_.size(); }

    VectorTarget file_;
    std::uint64_t at_ = 0;
    TIFF* tiff_;
};

}  // namespace brushwork::platform::test
