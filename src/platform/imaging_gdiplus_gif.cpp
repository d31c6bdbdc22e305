#include "platform/imaging_gdiplus_gif.h"

#include <vector>

#include "platform/gif_rows.h"

namespace brushwork::platform::gdiplus {

namespace {

// What stands behind the colours is black.
Palette256 paletteOf(const GifRows& rows) {
    constexpr std::uint32_t opaque = 0xFF000000U;
    const std::vector<std::uint32_t>& colours = rows.colours();
    Palette256 palette;
    palette.count = static_cast<std::uint32_t>(rows.tableSize());
    for (std::size_t i = 0; i < rows.tableSize(); ++i)
        palette.entries[i] = opaque | (i < colours.size() ? colours[i] : 0);
    if (rows.hasTransparency()) {
        palette.flags = paletteHasAlpha;
        palette.entries[rows.transparentIndex()] = 0;
    }
    return palette;
}

}  // namespace

ImagingStatus makePaletteBitmap(const EncodeRequest& request, BitmapOwner& bitmap) {
    if (request.width > largestGifSide || request.height > largestGifSide)
        return ImagingStatus::ValueOverflow;
    GifRows rows(request);
    if (!rows.choosePalette()) return ImagingStatus::Aborted;
    const Palette256 palette = paletteOf(rows);
    ImagingStatus status = makeBitmap(request.width, request.height, formatIndexed8, bitmap);
    if (status == ImagingStatus::Ok) status = GdipSetImagePalette(bitmap.get(), &palette);
    if (status != ImagingStatus::Ok) return status;
    LockedBits bits(bitmap.get(), request.width, request.height, lockForWriting, formatIndexed8);
    if (bits.status() != ImagingStatus::Ok) return bits.status();
    for (std::int32_t y = 0; y < request.height; ++y)
        if (!rows.nextRow(y, bits.row(y))) return ImagingStatus::Aborted;
    return bits.unlock();
}

}  // namespace brushwork::platform::gdiplus
