#include "photograph.h"

#include <cstdint>
#include <cstdio>
#include <cstring>
#include <memory>

#include "bridge/pixel_order.h"
#include "platform/imaging.h"
#include "platform/text_codec.h"

namespace sheet {
namespace {

using namespace brushwork;
using platform::ImagingStatus;

// The imaging service, started for as long as this lives.
class Session {
  public:
    Session() : status_(platform::imagingService().start(token_)) {}
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;
    ~Session() {
        if (status_ == ImagingStatus::Ok) platform::imagingService().stop(token_);
    }
    [[nodiscard]] ImagingStatus status() const { return status_; }

  private:
    std::uintptr_t token_ = 0;
    ImagingStatus status_;
};

std::size_t rowBytes(ilSPMemoryImg& image) {
    return static_cast<std::size_t>(image.sizeX()) * 4;
}

// Row 0 of an image is the bottom one, of a picture the top one.
std::uint8_t* pictureRow(ilSPMemoryImg& image, std::int32_t y) {
    return image.data() + static_cast<std::size_t>(image.sizeY() - 1 - y) * rowBytes(image);
}

class ImageSink : public platform::RowSink {
  public:
    ImageSink(ilSPMemoryImg& image, std::uint8_t paper) : image_(image), paper_(paper) {}
    bool putRows(std::int32_t y, std::int32_t count, const std::uint8_t* bgra) override {
        const std::size_t bytes = rowBytes(image_);
        for (std::int32_t n = 0; n < count; ++n, bgra += bytes) {
            std::uint8_t* const row = pictureRow(image_, y + n);
            std::memcpy(row, bgra, bytes);
            layOnPaper(row, bytes / 4);
            swapRedAndBlue(row, bytes / 4);
        }
        return true;
    }

  private:
    void layOnPaper(std::uint8_t* pixel, std::size_t count) const {
        for (std::size_t n = 0; n < count; ++n, pixel += 4) {
            const int seen = paper_ * (255 - pixel[3]) / 255;
            for (int c = 0; c < 3; ++c) pixel[c] = static_cast<std::uint8_t>(pixel[c] + seen);
            pixel[3] = 255;
        }
    }

    ilSPMemoryImg& image_;
    std::uint8_t paper_;
};

class ImageSource : public platform::RowSource {
  public:
    explicit ImageSource(ilSPMemoryImg& image) : image_(image) {}
    bool getRow(std::int32_t y, std::uint8_t* bgra) override {
        std::memcpy(bgra, pictureRow(image_, y), rowBytes(image_));
        swapRedAndBlue(bgra, static_cast<std::size_t>(image_.sizeX()));
        return true;
    }

  private:
    ilSPMemoryImg& image_;
};

std::string described(ImagingStatus status) {
    return "the imaging service answers status " + std::to_string(static_cast<int>(status));
}

}  // namespace

Ref<ilSPMemoryImg> openPhotograph(const std::string& path, std::uint8_t paper,
                                  std::string& trouble) {
    const Session session;
    ImagingStatus status = session.status();
    std::unique_ptr<platform::Picture> picture;
    if (status == ImagingStatus::Ok)
        picture = platform::imagingService().openFile(platform::fromUtf8(path), status);
    if (!picture) {
        trouble = described(status);
        return {};
    }
    auto image = makeRef<ilSPMemoryImg>(picture->width(), picture->height(), 4);
    if (!image->data()) {
        trouble = "there is no memory for the picture";
        return {};
    }
    // Rows that the reader leaves out are transparent.
    std::memset(image->data(), paper, image->byteSize());
    ImageSink sink(*image, paper);
    status = picture->readRows(platform::PixelFormat::Pargb32, sink);
    if (status == ImagingStatus::Ok) return image;
    trouble = described(status);
    return {};
}

bool savePhotograph(const std::string& path, ilSPMemoryImg& image, std::string& trouble) {
    const Session session;
    ImageSource source(image);
    platform::EncodeRequest request;
    request.width = image.sizeX();
    request.height = image.sizeY();
    request.source = &source;
    ImagingStatus status = session.status();
    if (status == ImagingStatus::Ok) {
        status = ImagingStatus::UnknownImageFormat;
        for (const auto& encoder : platform::imagingService().encoders())
            if (encoder.formatId == platform::imageFormatPng)
                status = platform::imagingService().saveFile(platform::fromUtf8(path),
                                                             encoder.classId, request);
    }
    if (status != ImagingStatus::Ok) trouble = described(status);
    return status == ImagingStatus::Ok;
}

int runSheet(int argc, char** argv, std::uint8_t paper,
             const std::function<Ref<ilSPMemoryImg>(Ref<ilSPMemoryImg> photograph)>& draw) {
    if (argc != 3) {
        std::fprintf(stderr, "usage: %s PHOTOGRAPH OUT.png\n", argv[0]);
        return 2;
    }
    std::string trouble;
    const Ref<ilSPMemoryImg> photograph = openPhotograph(argv[1], paper, trouble);
    if (!photograph) {
        std::fprintf(stderr, "%s: %s\n", argv[1], trouble.c_str());
        return 3;
    }
    const Ref<ilSPMemoryImg> sheet = draw(photograph);
    if (!sheet || !sheet->data()) {
        std::fprintf(stderr, "%s: there is no memory for the sheet\n", argv[1]);
        return 3;
    }
    if (!savePhotograph(argv[2], *sheet, trouble)) {
        std::fprintf(stderr, "%s: %s\n", argv[2], trouble.c_str());
        return 4;
    }
    return 0;
}

}  // namespace sheet
