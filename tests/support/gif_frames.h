// A small reader of animated GIFs, for tests: it follows the file's format alone, and shares
// nothing with what writes them.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

namespace brushwork::test {

struct GifFrame {
    int left = 0, top = 0, width = 0, height = 0;
    int hundredths = 0;
    int disposal = 0;
    std::vector<std::uint32_t> pixels;  // rows from the top, 0xAArrggbb; 0: transparent
};

struct GifFile {
    int width = 0, height = 0;
    int repeats = -1;  // -1: it says nothing; 0: without end
    std::vector<GifFrame> frames;
};

class GifFrameReader {
  public:
    explicit GifFrameReader(std::string_view bytes) : bytes_(bytes) {}

    // Nothing for a file that isn't whole and sound to its last byte.
    std::optional<GifFile> read() {
        GifFile file;
        if (bytes_.substr(0, 6) != "GIF89a") return {};
        at_ = 6;
        file.width = word();
        file.height = word();
        const int flags = byte();
        at_ += 2;
        if ((flags & 0x80) != 0) global_ = colours(flags);
        for (;;) {
            const int kind = byte();
            if (kind == 0x3B) break;
            if (kind == 0x21 ? !extension(file) : kind != 0x2C || !image(file)) return {};
        }
        return failed_ || at_ != bytes_.size() ? std::nullopt : std::optional(std::move(file));
    }

  private:
    using Colours = std::vector<std::uint32_t>;

    int byte() {
        if (at_ >= bytes_.size()) {
            failed_ = true;
            return -1;
        }
        return static_cast<unsigned char>(bytes_[at_++]);
    }
    int word() {
        const int low = byte();
        return low | byte() << 8;
    }
    Colours colours(int flags) {
        Colours table(std::size_t{2} << (flags & 7));
        for (std::uint32_t& colour : table) {
            colour = 0xFF;
            for (int n = 0; n < 3; ++n) colour = colour << 8 | static_cast<std::uint32_t>(byte());
        }
        return table;
    }
    std::vector<std::uint8_t> blocks() {
        std::vector<std::uint8_t> data;
        for (int count = byte(); count > 0; count = byte())
            for (; count > 0; --count) data.push_back(static_cast<std::uint8_t>(byte()));
        return data;
    }
    bool extension(GifFile& file) {
        const int label = byte();
        const std::vector<std::uint8_t> data = blocks();
        if (label == 0xF9) {
            if (data.size() != 4) return false;
            next_.disposal = data[0] >> 2 & 7;
            next_.hundredths = data[1] | data[2] << 8;
            transparent_ = (data[0] & 1) != 0 ? data[3] : -1;
        } else if (label == 0xFF && data.size() == 14) {
            file.repeats = data[12] | data[13] << 8;
        }
        return !failed_;
    }
    bool image(GifFile& file) {
        GifFrame frame = std::exchange(next_, GifFrame());
        frame.left = word();
        frame.top = word();
        frame.width = word();
        frame.height = word();
        const int flags = byte();
        const Colours table = (flags & 0x80) != 0 ? colours(flags) : global_;
        const int codeSize = byte();
        const std::vector<std::uint8_t> indices = decode(blocks(), codeSize);
        const auto count =
            static_cast<std::size_t>(frame.width) * static_cast<std::size_t>(frame.height);
        if (failed_ || (flags & 0x40) != 0 || indices.size() != count) return false;
        for (const std::uint8_t index : indices) {
            if (index >= table.size()) return false;
            frame.pixels.push_back(index == transparent_ ? 0 : table[index]);
        }
        transparent_ = -1;
        file.frames.push_back(std::move(frame));
        return true;
    }
    // Codes of growing size, each a known run of indices or the run before and one more.
    std::vector<std::uint8_t> decode(const std::vector<std::uint8_t>& data, int codeSize) {
        std::vector<std::uint8_t> out;
        if (codeSize < 2 || codeSize > 8) return out;
        const std::size_t clear = std::size_t{1} << codeSize, end = clear + 1;
        std::vector<std::vector<std::uint8_t>> runs;
        std::vector<std::uint8_t> before;
        std::size_t bit = 0;
        int width = codeSize + 1;
        const auto restart = [&] {
            runs.assign(clear + 2, {});
            for (std::size_t n = 0; n < clear; ++n) runs[n] = {static_cast<std::uint8_t>(n)};
            width = codeSize + 1;
            before.clear();
        };
        restart();
        while (bit + static_cast<std::size_t>(width) <= data.size() * 8) {
            std::size_t code = 0;
            for (int n = 0; n < width; ++n, ++bit)
                code |= static_cast<std::size_t>(data[bit / 8] >> bit % 8 & 1) << n;
            if (code == end) return out;
            if (code == clear) {
                restart();
                continue;
            }
            if (code > runs.size() || (code == runs.size() && before.empty())) break;
            std::vector<std::uint8_t> run = code < runs.size() ? runs[code] : before;
            if (code == runs.size()) run.push_back(before.front());
            if (!before.empty() && runs.size() < 4096) {
                before.push_back(run.front());
                runs.push_back(before);
                if (runs.size() == std::size_t{1} << width && width < 12) ++width;
            }
            out.insert(out.end(), run.begin(), run.end());
            before = std::move(run);
        }
        failed_ = true;
        return out;
    }

    std::string_view bytes_;
    std::size_t at_ = 0;
    bool failed_ = false;
    Colours global_;
    GifFrame next_;
    int transparent_ = -1;
};

}  // namespace brushwork::test
