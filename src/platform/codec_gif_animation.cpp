#include "platform/codec_gif_animation.h"

#include <new>

#include "platform/codec_gif_output.h"

namespace brushwork::platform {

namespace {

// What browsers and viewers read the number of plays from. It tells repetitions: without it all is
// shown once.
bool putPlays(GifFileType* gif, std::uint16_t plays) {
    if (plays == 1) return true;
    const unsigned repeats = plays == 0 ? 0 : plays - 1u;
    const GifByteType block[] = {1, static_cast<GifByteType>(repeats & 255),
                                 static_cast<GifByteType>(repeats >> 8)};
    return EGifPutExtensionLeader(gif, APPLICATION_EXT_FUNC_CODE) == GIF_OK &&
           EGifPutExtensionBlock(gif, 11, "NETSCAPE2.0") == GIF_OK &&
           EGifPutExtensionBlock(gif, sizeof block, block) == GIF_OK &&
           EGifPutExtensionTrailer(gif) == GIF_OK;
}

}  // namespace

struct GifAnimation::File {
    explicit File(ByteTarget& target) : output(target) {}
    GifOutput output;
    GifFile gif;  // goes first: it writes into the output
};

GifAnimation::GifAnimation(ByteTarget& target) : target_(target) {}

GifAnimation::~GifAnimation() = default;

ImagingStatus GifAnimation::begin(const Screen& screen) {
    if (file_) return ImagingStatus::WrongState;
    if (screen.width < 1 || screen.height < 1) return ImagingStatus::InvalidParameter;
    if (screen.width > largestGifSide || screen.height > largestGifSide)
        return ImagingStatus::ValueOverflow;
    file_.reset(new (std::nothrow) File(target_));
    if (!file_) return ImagingStatus::OutOfMemory;
    int error = 0;
    file_->gif.reset(EGifOpen(&file_->output, GifOutput::onWrite, &error));
    failed_ = true;
    if (!file_->gif) return ImagingStatus::OutOfMemory;
    screen_ = screen;
    GifFileType* const gif = file_->gif.get();
    EGifSetGifVersion(gif, true);
    if (EGifPutScreenDesc(gif, screen.width, screen.height, 8, 0, nullptr) != GIF_OK ||
        !putPlays(gif, screen.plays))
        return ImagingStatus::GenericError;
    failed_ = false;
    return ImagingStatus::Ok;
}

ImagingStatus GifAnimation::add(const EncodeRequest& request, std::uint32_t hundredths) {
    if (!file_ || failed_) return ImagingStatus::WrongState;
    if (!request.source || request.width != screen_.width || request.height != screen_.height)
        return ImagingStatus::InvalidParameter;
    constexpr std::uint32_t longest = 65535;
    std::uint32_t parts = hundredths / longest + (hundredths % longest != 0);
    for (ImagingStatus status; parts > 0; --parts) {
        const std::uint32_t part = hundredths / parts;
        hundredths -= part;
        try {
            status = write(request, static_cast<std::uint16_t>(part));
        } catch (const std::bad_alloc&) {
            status = ImagingStatus::OutOfMemory;
        }
        failed_ = status != ImagingStatus::Ok;
        if (failed_) return status;
    }
    return ImagingStatus::Ok;
}

ImagingStatus GifAnimation::write(const EncodeRequest& request, std::uint16_t hundredths) {
    GifRows rows(request);
    if (!rows.choosePalette()) return ImagingStatus::GenericError;
    const GifColours map = makeGifColours(rows);
    if (!map) return ImagingStatus::OutOfMemory;
    GraphicsControlBlock control{};
    control.DisposalMode = DISPOSE_BACKGROUND;
    control.DelayTime = hundredths;
    control.TransparentColor =
        rows.hasTransparency() ? rows.transparentIndex() : NO_TRANSPARENT_COLOR;
    GifFileType* const gif = file_->gif.get();
    if (!putGifControl(gif, control) ||
        EGifPutImageDesc(gif, 0, 0, request.width, request.height, false, map.get()) != GIF_OK ||
        !putGifRows(gif, rows, request.width, request.height))
        return ImagingStatus::GenericError;
    ++pictures_;
    return ImagingStatus::Ok;
}

ImagingStatus GifAnimation::finish() {
    if (!file_ || failed_ || pictures_ == 0) return ImagingStatus::WrongState;
    failed_ = true;
    int error = 0;
    const bool closed = EGifCloseFile(file_->gif.release(), &error) == GIF_OK;
    return file_->output.finish() && closed ? ImagingStatus::Ok : ImagingStatus::GenericError;
}

}  // namespace brushwork::platform
