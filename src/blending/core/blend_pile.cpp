#include "blending/core/blend_pile.h"

#include <algorithm>
#include <new>

#include "blending/core/work_sharing.h"

namespace brushwork::npc {
namespace {

constexpr std::size_t mostPages = 256;
constexpr std::int64_t side = BlendPile::cellSide;
// Threads take halves of cells.
constexpr std::size_t sharesPerCell = 2;
// No more isn't worth waking anybody, or sharing at all.
constexpr std::int64_t muchWork = 131072, someWork = 8192;

bool holds(const WideBox& area, std::int64_t x, std::int64_t y) {
    return x >= area.x0 && x < area.x1 && y >= area.y0 && y < area.y1;
}

// Visits the parts of a box that lie in one page each. The view is that of the page of the box
// before, which most boxes share.
template <class Visit>
void eachPage(InputPages& input, PageView& view, const WideBox& whole, const Visit& visit) {
    const WideBox box = input.clipped(whole);
    std::int64_t rowEnd = box.y1;
    for (std::int64_t y = box.y0; y < box.y1; y = rowEnd) {
        rowEnd = box.y1;
        for (std::int64_t x = box.x0; x < box.x1;) {
            if (!view.data || !holds(view.area, x, y)) view = input.pageAt(x, y);
            const WideBox part{x, y, std::min(box.x1, view.area.x1),
                               std::min(box.y1, view.area.y1)};
            if (view.data) {
                WorkPlane plane;
                plane.stride = view.stride;
                plane.channels = plane.bytesPerPixel = input.channels();
                plane.base = view.data + (part.y0 - view.y) * plane.rowBytes() +
                             (part.x0 - view.x) * plane.bytesPerPixel;
                visit(part, plane);
            }
            rowEnd = std::min(rowEnd, part.y1);
            x = part.x1;
        }
    }
}

WorkRecord rowsOf(const WorkRecord& record, std::int64_t from, std::int64_t count) {
    WorkRecord rows = record;
    rows.height = static_cast<std::int32_t>(count);
    for (WorkPlane& plane : rows.planes)
        if (plane.base) plane.base = plane.row(static_cast<std::int32_t>(from));
    return rows;
}

// The first rows of a source are asked for while what comes before it is blended; the kernel asks
// for the others.
void fetchFirstRows(const WorkPlane& plane, std::int32_t width, std::int32_t height) {
    constexpr std::int32_t most = 4;
    constexpr std::int64_t lineBytes = 64;
    if (plane.stride == 0) return;
    const std::int64_t rowBytes = std::int64_t{width} * plane.bytesPerPixel;
    for (std::int32_t y = 0; y < std::min(height, most); ++y)
        for (std::int64_t at = 0; at < rowBytes; at += lineBytes)
            __builtin_prefetch(plane.row(y) + at);
}

}  // namespace

BlendPile::BlendPile(ilImage& target, std::int32_t x, std::int32_t y)
    : target_{Ref<ilImage>(&target), true, x, y} {}

void BlendPile::add(GenericBlender& blender, const ilTile& box) {
    put(blender, false, 0, box);
}

void BlendPile::addConstant(GenericBlender& blender, std::uint32_t pixel, const ilTile& box) {
    put(blender, true, pixel, box);
}

void BlendPile::put(GenericBlender& blender, bool isConstant, std::uint32_t pixel,
                    const ilTile& box) {
    if (box.isEmpty()) return;
    if (pageCount_ >= mostPages) run();
    const std::size_t cell = cellOf(box);
    const bool samePage =
        !pieces_.empty() && pieces_.back().blender == &blender && pieces_.back().cell == cell;
    if (!samePage) {
        if (!isConstant) ++pageCount_;
        blender.prepareRecords();
    }
    pieces_.push_back({&blender,
                       isConstant ? nullptr : sourceOf(blender),
                       pixel,
                       cell,
                       {box.x, box.y, std::int64_t{box.x} + box.nx, std::int64_t{box.y} + box.ny}});
}

// Of the latest blenders there are few; who adds goes through cells or through blenders.
BlendPile::Source* BlendPile::sourceOf(GenericBlender& blender) {
    const auto found = std::find_if(sources_.rbegin(), sources_.rend(),
                                    [&](const Source& each) { return each.blender == &blender; });
    if (found != sources_.rend()) return &*found;
    Source& source = sources_.emplace_back();
    source.blender = &blender;
    return &source;
}

std::size_t BlendPile::cellOf(const ilTile& box) {
    const std::int64_t x = box.x & -side, y = box.y & -side;
    for (std::size_t n = 0; n < cells_.size(); ++n) {
        const std::size_t at = (lastCell_ + n) % cells_.size();
        if (cells_[at].x == x && cells_[at].y == y) return lastCell_ = at;
    }
    cells_.push_back({x, y});
    return lastCell_ = cells_.size() - 1;
}

void BlendPile::run() {
    if (pieces_.empty()) return;
    InputPages target;
    try {
        if (target.begin(target_)) {
            // What is read first: a target that shares a page with a source then gets its copy, and
            // the source keeps the page it has.
            lockSources();
            lockTarget(target);
            work();
        }
    } catch (const std::bad_alloc&) {
    }
    target.end();
    for (Source& source : sources_) source.pages.end();
    clear();
}

void BlendPile::lockSources() {
    for (Source& source : sources_)
        if (!source.pages.begin(source.blender->input(InputSource))) source.pages.end();
    for (const Piece& piece : pieces_) {
        if (!piece.source) {
            WorkPlane plane;
            plane.base = reinterpret_cast<std::uint8_t*>(constants_.emplace_back().data());
            constants_.back().fill(piece.pixel);
            plane.channels = plane.bytesPerPixel = 4;
            chain(piece, piece.box, plane);
        } else if (piece.source->pages.isBound()) {
            eachPage(piece.source->pages, piece.source->view, piece.box,
                     [&](const WideBox& box, const WorkPlane& plane) { chain(piece, box, plane); });
        }
    }
}

void BlendPile::chain(const Piece& piece, const WideBox& box, const WorkPlane& source) {
    Cell& cell = cells_[piece.cell];
    (cell.first == none ? cell.first : layered_[cell.last].next) = layered_.size();
    cell.last = layered_.size();
    layered_.push_back({piece.blender, source, !piece.source, box, none});
}

void BlendPile::lockTarget(InputPages& target) {
    PageView view;
    for (Cell& cell : cells_) {
        cell.begin = parts_.size();
        for (std::size_t n = cell.first; n != none; n = layered_[n].next) {
            const Layered& each = layered_[n];
            eachPage(target, view, each.box, [&](const WideBox& box, const WorkPlane& plane) {
                Part& part = parts_.emplace_back();
                part.blender = each.blender;
                part.y = box.y0;
                part.record.width = static_cast<std::int32_t>(box.width());
                part.record.height = static_cast<std::int32_t>(box.height());
                part.record.planes[InputDestination] = plane;
                WorkPlane& source = part.record.planes[InputSource] = each.source;
                part.record.constantSource = each.isConstant;
                if (each.isConstant) return;
                source.base += (box.y0 - each.box.y0) * source.rowBytes() +
                               (box.x0 - each.box.x0) * source.bytesPerPixel;
            });
        }
        cell.end = parts_.size();
    }
}

void BlendPile::work() const {
    std::int64_t pixels = 0;
    for (const Part& part : parts_) pixels += part.record.pixels();
    if (pixels <= someWork) {
        for (const Cell& cell : cells_) blendRows(cell, cell.y, cell.y + side);
        return;
    }
    constexpr std::int64_t rows = side / sharesPerCell;
    const auto share = [this](std::size_t n) {
        const Cell& cell = cells_[n / sharesPerCell];
        const std::int64_t y = cell.y + static_cast<std::int64_t>(n % sharesPerCell) * rows;
        blendRows(cell, y, y + rows);
    };
    shareWork(cells_.size() * sharesPerCell, share,
              pixels > muchWork ? SharedWork::Much : SharedWork::Some);
}

void BlendPile::blendRows(const Cell& cell, std::int64_t fromY, std::int64_t toY) const {
    const GenericBlender* blender = nullptr;
    WorkRecord rows;
    for (std::size_t n = cell.begin; n < cell.end; ++n) {
        const Part& part = parts_[n];
        const std::int64_t from = std::max(fromY, part.y);
        const std::int64_t to = std::min(toY, part.y + part.record.height);
        if (from >= to) continue;
        const WorkRecord next = rowsOf(part.record, from - part.y, to - from);
        fetchFirstRows(next.planes[InputSource], next.width, next.height);
        if (blender) blender->blendRecord(rows);
        blender = part.blender;
        rows = next;
    }
    if (blender) blender->blendRecord(rows);
}

void BlendPile::clear() {
    pieces_.clear();
    sources_.clear();
    cells_.clear();
    lastCell_ = 0;
    pageCount_ = 0;
    constants_.clear();
    layered_.clear();
    parts_.clear();
}

}  // namespace brushwork::npc
