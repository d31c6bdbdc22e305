#include "digits.h"

#include <string>

namespace sheet {
namespace {

using namespace brushwork;

constexpr std::int32_t dot = 3;
constexpr std::int32_t columns = 3;
constexpr std::int32_t rows = 5;

// Five rows of three dots, from the top.
constexpr const char* digits[] = {
    "####.##.##.####", ".#.##..#..#.###", "###..#####..###", "###..####..####", "#.##.####..#..#",
    "####..###..####", "####..####.####", "###..#..#..#..#", "####.#####.####", "####.####..####"};

ilPixel grey(std::uint8_t level) {
    const std::uint8_t bytes[] = {level, level, level, 255};
    return ilPixel(TypeUChar, 4, bytes);
}

}  // namespace

void drawNumber(ilSPMemoryImg& image, std::int32_t x, std::int32_t y, int number) {
    const std::string text = std::to_string(number);
    const auto wide = static_cast<std::int32_t>(text.size()) * (columns + 1) + 1;
    image.fillRegion(flatTile(x, y, wide * dot, (rows + 2) * dot), grey(0));
    x += dot;
    for (const char letter : text) {
        const char* shape = digits[letter - '0'];
        for (std::int32_t row = rows; row > 0; --row)
            for (std::int32_t column = 0; column < columns; ++column)
                if (*shape++ == '#')
                    image.fillRegion(flatTile(x + column * dot, y + row * dot, dot, dot),
                                     grey(255));
        x += (columns + 1) * dot;
    }
}

}  // namespace sheet
