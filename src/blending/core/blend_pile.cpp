#include "blending/core/blend_pile.h"

#include <algorithm>
#include <bit>
#include <new>

#include "blending/core/work_sharing.h"
#include "foundation/tasks/task_pool.h"

namespace brushwork::npc {
namespace {

constexpr std::size_t mostPages = 256;
constexpr std::int64_t side = BlendPile::cellSide;
constexpr std::size_t manyCells = 6;  // so many are shared whole, fewer by halves
// What is known of a page, it is known of squares in rows of so many.
constexpr int squaresAcross = 8;
constexpr std::int64_t squareSide = pageSide / squaresAcross;
// No more isn't worth waking anybody, or sharing at all.
constexpr std::int64_t muchWork = 131072, someWork = 8192;

// Visits the boxes around what is filled in each row of squares of a page whose corner is (x, y),
// those of equal rows as one.
template <class Visit>
void eachFilledBox(std::uint64_t cells, std::int64_t x, std::int64_t y, const Visit& visit) {
    for (int row = 0; row < squaresAcross;) {
        const auto bits = static_cast<std::uint8_t>(cells >> row * squaresAcross);
        const int from = row;
        const int left = std::countr_zero(bits);
        const int right = squaresAcross - std::countl_zero(bits);
        for (; row < squaresAcross; ++row) {
            const auto next = static_cast<std::uint8_t>(cells >> row * squaresAcross);
            if (std::countr_zero(next) != left || squaresAcross - std::countl_zero(next) != right)
                break;
        }
        if (bits != 0)
            visit(WideBox{x + left * squareSide, y + from * squareSide, x + right * squareSide,
                          y + row * squareSide});
    }
}

// The first rows of a source are asked for while what comes before it is blended; the kernel asks
// for the others.
void fetchFirstRows(const WorkRecord& record) {
    constexpr std::int32_t most = 4;
    constexpr std::int64_t lineBytes = 64;
    if (record.constantSource) return;
    const WorkPlane& plane = record.planes[InputSource];
    const std::int64_t rowBytes = std::int64_t{record.width} * plane.bytesPerPixel;
    for (std::int32_t y = 0; y < std::min(record.height, most); ++y)
        for (std::int64_t at = 0; at < rowBytes; at += lineBytes)
            __builtin_prefetch(plane.row(y) + at);
}

}  // namespace

BlendPile::BlendPile(ilImage& target, std::int32_t x, std::int32_t y)
    : target_{Ref<ilImage>(&target), true, x, y} {}

// The source may stand far off.
bool BlendPile::add(GenericBlender& blender, const Source& source, const ilTile& box) {
    if (box.isEmpty()) return false;
    const WideBox whole = wideBox(box);
    bool drawn = false;
    for (std::int64_t y = ((whole.y0 - source.y) & -side) + source.y; y < whole.y1; y += side)
        for (std::int64_t x = ((whole.x0 - source.x) & -side) + source.x; x < whole.x1; x += side)
            drawn =
                addPage(blender, source, x, y, intersection(whole, {x, y, x + side, y + side})) ||
                drawn;
    return drawn;
}

// Beyond the limit of smart images there is nothing but the fill.
bool BlendPile::addPage(GenericBlender& blender, const Source& source, std::int64_t x,
                        std::int64_t y, const WideBox& box) {
    if (kept_.count() >= mostPages) run();
    const auto inLimit = [](std::int64_t place) {
        return place >= -coordinateLimit && place < coordinateLimit;
    };
    const std::int64_t ownX = x - source.x, ownY = y - source.y;
    ilSmartImage::PageSight sight;
    if (inLimit(ownX) && inLimit(ownY)) {
        sight = source.image->keepPage(static_cast<std::int32_t>(ownX),
                                       static_cast<std::int32_t>(ownY), source.skipsEmpty, kept_);
    } else {
        sight.isSolid = true;
        sight.solid = source.image->pages().solidValue();
    }
    Piece piece{&blender, sight.data, sight.isSolid, x, y, ~std::uint64_t{0}, box};
    if (sight.isSolid) {
        if (source.skipsEmpty && sight.solid >> 24 == 0) return false;
        constants_.emplace_back().fill(sight.solid);
        piece.pixels = reinterpret_cast<std::uint8_t*>(constants_.back().data());
    } else if (!sight.data) {
        return false;
    } else if (source.skipsEmpty) {
        piece.cells = sight.filledCells;
    }
    blender.prepareRecords();
    chain(piece);
    return true;
}

void BlendPile::chain(const Piece& piece) {
    Cell& cell = cellAt(piece.box.x0 & -side, piece.box.y0 & -side);
    (cell.first == none ? cell.first : pieces_[cell.last].next) = pieces_.size();
    cell.last = pieces_.size();
    pieces_.push_back(piece);
}

BlendPile::Cell& BlendPile::cellAt(std::int64_t x, std::int64_t y) {
    for (std::size_t n = 0; n < cells_.size(); ++n) {
        const std::size_t at = (lastCell_ + n) % cells_.size();
        if (cells_[at].x == x && cells_[at].y == y) return cells_[lastCell_ = at];
    }
    lastCell_ = cells_.size();
    return cells_.emplace_back(Cell{x, y});
}

// Sources have been read already: a target that shares a page with one gets its copy now, and the
// source keeps the page it has.
void BlendPile::run() {
    if (pieces_.empty()) return;
    InputPages target;
    try {
        if (target.begin(target_)) {
            lockTarget(target);
            work(target);
        }
    } catch (const std::bad_alloc&) {
    }
    target.end();
    clear();
}

void BlendPile::lockTarget(InputPages& target) {
    for (Cell& cell : cells_) {
        cell.firstView = cell.lastView = views_.size();
        for (std::size_t n = cell.first; n != none; n = pieces_[n].next) {
            const Piece& piece = pieces_[n];
            const WideBox inside = target.clipped(piece.box);
            if (inside.isEmpty()) continue;
            if (cell.lastView > cell.firstView && holds(views_.back().area, inside)) continue;
            eachFilledBox(piece.cells, piece.x, piece.y, [&](const WideBox& filled) {
                lockTarget(target, cell, intersection(inside, filled));
            });
        }
    }
}

// Those pages that it meets and that aren't locked yet.
void BlendPile::lockTarget(InputPages& target, Cell& cell, const WideBox& box) {
    std::int64_t rowEnd = box.y1;
    for (std::int64_t y = box.y0; y < box.y1; y = rowEnd) {
        rowEnd = box.y1;
        for (std::int64_t x = box.x0; x < box.x1;) {
            std::size_t at = cell.firstView;
            while (at < views_.size() && !holds(views_[at].area, {x, y, x + 1, y + 1})) ++at;
            if (at == views_.size()) views_.push_back(target.pageAt(x, y));
            const PageView& view = views_[at];
            rowEnd = std::min(rowEnd, view.area.y1);
            x = view.area.x1;
        }
    }
    cell.lastView = views_.size();
}

// The rows of a cell between two places, in the order of its pieces.
class BlendPile::Work {
  public:
    Work(const BlendPile& pile, const Cell& cell, std::int32_t targetChannels)
        : pile_(pile), cell_(cell), targetChannels_(targetChannels) {}

    void blendRows(std::int64_t from, std::int64_t to) {
        for (std::size_t n = cell_.first; n != none; n = pile_.pieces_[n].next) {
            const Piece& piece = pile_.pieces_[n];
            const WideBox rows{piece.box.x0, std::max(piece.box.y0, from), piece.box.x1,
                               std::min(piece.box.y1, to)};
            if (rows.isEmpty()) continue;
            for (std::size_t at = cell_.firstView; at < cell_.lastView; ++at) {
                const PageView& view = pile_.views_[at];
                const WideBox part = intersection(rows, view.area);
                if (!view.data || part.isEmpty()) continue;
                eachFilledBox(piece.cells, piece.x, piece.y, [&](const WideBox& filled) {
                    put(piece, view, intersection(part, filled));
                });
            }
        }
        if (blender_) blender_->blendRecord(waiting_);
    }

  private:
    // One behind, so that the next one's pixels come meanwhile.
    void put(const Piece& piece, const PageView& view, const WideBox& box) {
        if (box.isEmpty()) return;
        WorkRecord record;
        record.width = static_cast<std::int32_t>(box.width());
        record.height = static_cast<std::int32_t>(box.height());
        WorkPlane& target = record.planes[InputDestination];
        target.stride = view.stride;
        target.channels = target.bytesPerPixel = targetChannels_;
        target.base = view.data + (box.y0 - view.y) * target.rowBytes() +
                      (box.x0 - view.x) * target.bytesPerPixel;
        WorkPlane& source = record.planes[InputSource];
        source.base = piece.pixels;
        source.channels = source.bytesPerPixel = 4;
        record.constantSource = piece.isConstant;
        if (!piece.isConstant) {
            source.stride = pageSide;
            source.base +=
                (box.y0 - piece.y) * source.rowBytes() + (box.x0 - piece.x) * source.bytesPerPixel;
        }
        fetchFirstRows(record);
        if (blender_) blender_->blendRecord(waiting_);
        blender_ = piece.blender;
        waiting_ = record;
    }

    const BlendPile& pile_;
    const Cell& cell_;
    std::int32_t targetChannels_;
    const GenericBlender* blender_ = nullptr;
    WorkRecord waiting_;
};

void BlendPile::work(const InputPages& target) const {
    const auto blend = [&](const Cell& cell, std::int64_t from, std::int64_t to) {
        Work(*this, cell, target.channels()).blendRows(from, to);
    };
    std::int64_t pixels = 0;
    for (const Piece& piece : pieces_)
        pixels += std::min<std::int64_t>(piece.box.width() * piece.box.height(),
                                         squareSide * squareSide * std::popcount(piece.cells));
    if (pixels <= someWork || TaskPool::instance().size() == 0) {
        for (const Cell& cell : cells_) blend(cell, cell.y, cell.y + side);
        return;
    }
    const std::size_t parts = cells_.size() < manyCells ? 2 : 1;
    const std::int64_t rows = side / static_cast<std::int64_t>(parts);
    const auto share = [&](std::size_t n) {
        const Cell& cell = cells_[n / parts];
        const std::int64_t from = cell.y + static_cast<std::int64_t>(n % parts) * rows;
        blend(cell, from, from + rows);
    };
    shareWork(cells_.size() * parts, share,
              pixels > muchWork ? SharedWork::Much : SharedWork::Some);
}

void BlendPile::clear() {
    pieces_.clear();
    cells_.clear();
    lastCell_ = 0;
    kept_.giveBack();
    constants_.clear();
    views_.clear();
}

}  // namespace brushwork::npc
