// brushwork_resample_sheet PHOTOGRAPH OUT.png: one photograph through every filter of tiled images,
// from the top down nearest, bilinear, bicubic and the stretched cubic: turned, in perspective over
// a mesh of triangles, a detail over a border of tiles enlarged eight times, and reduced to 0.37.

#include <array>
#include <cmath>
#include <functional>
#include <string>
#include <vector>

#include "image/work/il_sp_memory_img.h"
#include "photograph.h"
#include "tiled/filter_factory.h"
#include "tiled/resample_run.h"
#include "tiled/tile_regions.h"

namespace {

using namespace brushwork;
using Picture = Ref<ilSPMemoryImg>;
using znTiledImage::PixelRect;

constexpr std::int32_t cellX = 400, cellY = 300;
constexpr std::int32_t margin = 8;

struct Place {
    double x, y;
};

// Where in the source a place of the cell lies.
using Map = std::function<Place(double x, double y)>;

// The cell as squares of two triangles each; the map is exact at their corners.
struct Mesh {
    std::vector<TriangleVertex> vertices;
    std::vector<std::uint32_t> indexes;

    Mesh(const Map& map, std::uint32_t side) {
        for (std::uint32_t j = 0; j <= side; ++j)
            for (std::uint32_t i = 0; i <= side; ++i) {
                const double x = double(cellX) * i / side;
                const double y = double(cellY) * j / side;
                const Place place = map(x, y);
                vertices.push_back({x, y, place.x, place.y, 0});
            }
        for (std::uint32_t j = 0; j < side; ++j)
            for (std::uint32_t i = 0; i < side; ++i) {
                const std::uint32_t at = j * (side + 1) + i;
                const std::uint32_t above = at + side + 1;
                indexes.insert(indexes.end(), {at, at + 1, above + 1, at, above + 1, above});
            }
    }
};

struct Task {
    Map map;
    std::uint32_t meshSide;
    std::int32_t footprint;  // of the stretched cubic
};

std::array<Task, 4> tasksFor(const PixelRect& source) {
    const double middleX = source.x + source.w / 2.0;
    const double middleY = source.y + source.h / 2.0;
    const auto turned = [=](double x, double y) {
        const double dx = (x - cellX / 2.0) * 0.9;
        const double dy = (y - cellY / 2.0) * 0.9;
        const double angle = 0.3;
        return Place{middleX + dx * std::cos(angle) + dy * std::sin(angle),
                     middleY + dy * std::cos(angle) - dx * std::sin(angle)};
    };
    const auto leaning = [=](double x, double y) {
        const double far = 1.0 - 0.55 * y / cellY;
        return Place{middleX + (x - cellX / 2.0) / far * 0.6,
                     source.y + source.h * (0.45 * y / cellY) / far};
    };
    const auto detail = [=](double x, double y) {
        return Place{128 + (x - cellX / 2.0) / 8, 128 + (y - cellY / 2.0) / 8};
    };
    const auto reduced = [=](double x, double y) {
        return Place{middleX + (x - cellX / 2.0) / 0.37, middleY + (y - cellY / 2.0) / 0.37};
    };
    return {Task{turned, 1, 4}, Task{leaning, 24, 4}, Task{detail, 1, 4}, Task{reduced, 1, 13}};
}

bool drawCell(const Task& task, std::int32_t type, const znTiledImage::PixelReader& reader,
              ilSPMemoryImg& sheet, std::int32_t left, std::int32_t bottom) {
    const auto target = znTiledImage::makeImage(4);
    const std::uint8_t paper[4] = {0x38, 0x38, 0x38, 255};
    if (!target->setRect({0, 0, cellX, cellY}) || !fillRect(*target, {0, 0, cellX, cellY}, paper))
        return false;
    const PixelRect& rect = reader.rect();
    const Ref<ResampleFilter> filter = makeFilter(type, EdgeOutside);
    filter->setFootprint(task.footprint, task.footprint);
    if (!filter->begin(&reader, rect.x, rect.y, rect.x + rect.w - 1, rect.y + rect.h - 1))
        return false;
    const Mesh mesh(task.map, task.meshSide);
    if (!resampleTriangles(*target, {mesh.vertices, mesh.indexes}, *filter)) return false;
    const auto stride = static_cast<std::size_t>(sheet.sizeX()) * 4;
    readRect(*target, {0, 0, cellX, cellY},
             sheet.data() + static_cast<std::size_t>(bottom) * stride +
                 static_cast<std::size_t>(left) * 4,
             stride);
    return true;
}

Picture sheetOf(ilSPMemoryImg& photograph) {
    // Off the grid of tiles, so that borders run through the picture.
    const PixelRect rect{-40, -70, photograph.sizeX(), photograph.sizeY()};
    const auto source = znTiledImage::makeImage(4);
    if (!source->setRect(rect) || !writeRect(*source, rect, photograph.data(),
                                             static_cast<std::size_t>(photograph.sizeX()) * 4))
        return {};
    const auto reader = makePixelReader(*source, rect);
    const auto tasks = tasksFor(rect);
    constexpr std::int32_t filters = 4;
    const auto across = static_cast<std::int32_t>(tasks.size());
    auto sheet = makeRef<ilSPMemoryImg>(across * (cellX + margin) + margin,
                                        filters * (cellY + margin) + margin, 4);
    if (!sheet->data()) return {};
    const std::uint8_t grey[] = {0x60, 0x60, 0x60, 255};
    sheet->fillRegion(sheet->box(), ilPixel(TypeUChar, 4, grey));
    for (std::int32_t type = 0; type < filters; ++type)
        for (std::int32_t n = 0; n < across; ++n) {
            const std::int32_t bottom = margin + (filters - 1 - type) * (cellY + margin);
            if (!drawCell(tasks[static_cast<std::size_t>(n)], type, *reader, *sheet,
                          margin + n * (cellX + margin), bottom))
                return {};
        }
    // On paper that shows, where the picture ended.
    for (std::size_t n = 3; n < sheet->byteSize(); n += 4) {
        std::uint8_t* const pixel = sheet->data() + n - 3;
        const int rest = 255 - pixel[3];
        for (int c = 0; c < 3; ++c) pixel[c] = static_cast<std::uint8_t>(pixel[c] + rest / 4);
        pixel[3] = 255;
    }
    return sheet;
}

}  // namespace

int main(int argc, char** argv) {
    return sheet::runSheet(argc, argv, 0x38,
                           [](const Picture& photograph) { return sheetOf(*photograph); });
}
