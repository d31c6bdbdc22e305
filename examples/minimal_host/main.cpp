// minimal_host OUT.png: the least that a host does: paints a stroke, takes it back, does it again,
// and writes what the canvas shows.
#include <brushwork/paint_manager.h>
#include <brushwork/pnt_undo_database.h>

#include <array>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <fstream>
#include <string>
#include <vector>

namespace {

using namespace brushwork;

constexpr std::int32_t width = 480, height = 320;
constexpr std::int32_t current = -2;  // canvas

std::vector<std::uint8_t> pixelsOf(PaintManager& manager) {
    std::vector<std::uint8_t> pixels(std::size_t{4} * width * height);
    manager.readCanvas(current, pixels.data());
    return pixels;
}

// A wave that swells and thins out.
void paintWave(PaintManager& manager) {
    BrushParameters brush = BrushParameters::defaults();
    brush.radiusLow = 1.0f;
    brush.radiusHigh = 16.0f;
    brush.opacityLow = 1.0f;
    manager.setBrush(brush, StrokeParameters());
    manager.setColor({0.75f, 0.15f, 0.1f, 1.0f});
    if (!manager.beginStroke()) return;
    for (int n = 0; n <= 100; ++n) {
        const float part = static_cast<float>(n) / 100.0f;
        StrokeInputPoint point;
        point.x = 40.0f + 400.0f * part;
        point.y = 160.0f + 80.0f * std::sin(12.0f * part);
        point.pressure = std::sin(3.14159f * part);
        manager.addPoint(point);
    }
    manager.endStroke();
}

std::string bigEndian(std::uint32_t number) {
    std::string bytes;
    for (int shift = 24; shift >= 0; shift -= 8) bytes += static_cast<char>(number >> shift);
    return bytes;
}

// One table step a bit, as a PNG chunk's check sum wants it.
std::uint32_t crcOf(const std::string& bytes) {
    std::uint32_t crc = 0xffffffffu;
    for (const char byte : bytes) {
        crc ^= static_cast<unsigned char>(byte);
        for (int bit = 0; bit < 8; ++bit) crc = (crc >> 1) ^ (crc & 1 ? 0xedb88320u : 0u);
    }
    return ~crc;
}

void putChunk(std::ofstream& file, const std::string& type, const std::string& data) {
    const std::string body = type + data;
    file << bigEndian(static_cast<std::uint32_t>(data.size())) << body << bigEndian(crcOf(body));
}

// The rows as stored blocks: a valid PNG without compression, for pixels that are opaque.
bool writePng(const char* path, const std::vector<std::uint8_t>& pixels) {
    std::string rows = "\x78\x01";
    std::uint32_t a = 1, b = 0;
    for (std::int32_t y = height - 1; y >= 0; --y) {
        std::string row(1, '\0');
        const auto* from = &pixels[std::size_t{4} * width * static_cast<std::size_t>(y)];
        for (std::int32_t x = 0; x < width; ++x, from += 4)
            row.append(reinterpret_cast<const char*>(from), 3);
        for (const char byte : row) {
            a = (a + static_cast<unsigned char>(byte)) % 65521;
            b = (b + a) % 65521;
        }
        const auto size = static_cast<std::uint16_t>(row.size());
        const auto flipped = static_cast<std::uint16_t>(~size);
        rows += y == 0 ? '\1' : '\0';
        for (const std::uint16_t number : {size, flipped}) {
            rows += static_cast<char>(number & 0xff);
            rows += static_cast<char>(number >> 8);
        }
        rows += row;
    }
    rows += bigEndian(b << 16 | a);
    std::ofstream file(path, std::ios::binary);
    file << "\x89PNG\r\n\x1a\n";
    putChunk(file, "IHDR", bigEndian(width) + bigEndian(height) + std::string("\x08\x02\0\0\0", 5));
    putChunk(file, "IDAT", rows);
    putChunk(file, "IEND", {});
    return file.good();
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fprintf(stderr, "usage: %s OUT.png\n", argv[0]);
        return 2;
    }
    PntUndoDatabase undo;
    setUndoDatabase(&undo);
    PaintManager manager;
    if (manager.newCanvas(width, height) < 0 || manager.newLayer() < 0) return 1;
    manager.setBackground({1.0f, 0.98f, 0.94f, 1.0f});
    const auto blank = pixelsOf(manager);
    paintWave(manager);
    const auto painted = pixelsOf(manager);

    const Ref<PntUndoOper> stroke = undo.records().back();
    stroke->undo(nullptr);
    const bool takenBack = pixelsOf(manager) == blank;
    stroke->redo(nullptr);
    const bool doneAgain = pixelsOf(manager) == painted;
    std::printf("painted %s, taken back %s, done again %s\n", painted != blank ? "yes" : "no",
                takenBack ? "yes" : "no", doneAgain ? "yes" : "no");
    const bool written = writePng(argv[1], painted);
    return painted != blank && takenBack && doneAgain && written ? 0 : 1;
}
