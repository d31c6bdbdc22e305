#include "platform/codec_gif_write.h"

#include <new>

#include "platform/codec_gif_output.h"

namespace brushwork::platform {

namespace {

bool writeHeaders(GifFileType* gif, const EncodeRequest& request, const GifRows& rows,
                  const ColorMapObject* map) {
    EGifSetGifVersion(gif, true);
    if (EGifPutScreenDesc(gif, request.width, request.height, 8, 0, map) != GIF_OK) return false;
    if (rows.hasTransparency()) {
        GraphicsControlBlock control{};
        control.TransparentColor = rows.transparentIndex();
        if (!putGifControl(gif, control)) return false;
    }
    return EGifPutImageDesc(gif, 0, 0, request.width, request.height, false, nullptr) == GIF_OK;
}

ImagingStatus writePicture(const EncodeRequest& request, ByteTarget& target) {
    GifOutput output(target);
    GifRows rows(request);
    if (!rows.choosePalette()) return ImagingStatus::GenericError;
    const GifColours map = makeGifColours(rows);
    int error = 0;
    GifFile gif(map ? EGifOpen(&output, GifOutput::onWrite, &error) : nullptr);
    if (!gif) return ImagingStatus::OutOfMemory;
    if (!writeHeaders(gif.get(), request, rows, map.get()) ||
        !putGifRows(gif.get(), rows, request.width, request.height))
        return ImagingStatus::GenericError;
    const bool closed = EGifCloseFile(gif.release(), &error) == GIF_OK;
    return output.finish() && closed ? ImagingStatus::Ok : ImagingStatus::GenericError;
}

}  // namespace

ImagingStatus writeGif(const EncodeRequest& request, ByteTarget& target) {
    if (request.width < 1 || request.height < 1 || request.source == nullptr)
        return ImagingStatus::InvalidParameter;
    if (request.width > largestGifSide || request.height > largestGifSide)
        return ImagingStatus::ValueOverflow;
    try {
        return writePicture(request, target);
    } catch (const std::bad_alloc&) {
        return ImagingStatus::OutOfMemory;
    }
}

}  // namespace brushwork::platform
