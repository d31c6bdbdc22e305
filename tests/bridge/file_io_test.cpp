// The file-IO classes as a host uses them.
#include <algorithm>
#include <random>

#include "bridge/bitmap.h"
#include "brushwork/zn_gdi_plus_file_io.h"
#include "client_run.h"
#include "image/work/il_sp_memory_img.h"

namespace brushwork {
namespace {

using test::HelperProgram;
using test::picture;
using test::pixelsOf;
using test::readBytes;
using test::TempFolder;
using test::wide;
using Bytes = std::vector<std::uint8_t>;

znOS::Filename named(const std::string& path) {
    return znOS::Filename(wide(path));
}

TEST(FileIO, ListsAndAnswersOfItsKind) {
    const Ref<znGdiPlusFileIO> io(new znGdiPlusFileIO);
    const char16_t* const filters[] = {u"Bitmap Files (*.bmp)|*.bmp|",
                                       u"JPEG Files (*.jpg,*.jpeg,*.jpe)|*.jpg;*.jpeg;*.jpe|",
                                       u"GIF Files (*.gif)|*.gif|", u"PNG Files (*.png)|*.png|"};
    const char16_t* const endings[] = {u".bmp", u".jpg", u".jpeg", u".jpe", u".gif", u".png"};
    ASSERT_EQ(io->readFilterCount(), std::size(filters));
    ASSERT_EQ(io->readExtensionCount(), std::size(endings));
    for (std::size_t i = 0; i < std::size(filters); ++i)
        EXPECT_EQ(io->readFilter(i), znString::IString(filters[i]));
    for (std::size_t i = 0; i < std::size(endings); ++i)
        EXPECT_EQ(io->readExtension(i), znString::IString(endings[i]));
    EXPECT_TRUE(io->readFilter(4).isEmpty());
    EXPECT_TRUE(io->readExtension(6).isEmpty());

    // The operations between those with work of their own, through the bases.
    znImageFileIO& image = *io;
    znFileIO& file = image;
    ImageDescriptor descriptor;
    EXPECT_TRUE(file.canRead() && file.canWrite() && file.acceptsFile(descriptor.filename));
    EXPECT_FALSE(file.readMetadata(descriptor) || file.writeMetadata(descriptor));
    EXPECT_FALSE(file.hasSettings() || file.loadLayer(descriptor, 0));
    EXPECT_EQ(file.layerCount(descriptor), 0);
    EXPECT_TRUE(file.layerName(descriptor, 0).isEmpty());
    EXPECT_FALSE(image.keepsLayers() || image.keepsMetadata());
    ImageFileInfo info;
    EXPECT_TRUE(file.znFileIO::readHeader(descriptor, info));
    EXPECT_EQ(info.width * 1000 + info.height * 10 + info.imageCount, 101001);
}

TEST(FileIO, ResetPutsEveryFieldBackButTheHosts) {
    ImageFileInfo info;
    const int own = 5;
    info.hostBlock = &own;
    for (auto& block : info.blocks) block = std::make_unique<std::uint8_t[]>(9);
    info.identifier.fill(1);
    info.xResolution = info.yResolution = 3.0;
    info.resolutionUnit = info.width = info.height = info.imageCount = info.activeImage = 9;
    info.version = 9;
    info.isLayered = info.hasProfile = info.hasThumbnail = info.hasMetadata = true;
    info.title = info.author = info.comment = "x";
    info.reset();
    EXPECT_EQ(info.hostBlock, &own);
    for (const auto& block : info.blocks) EXPECT_FALSE(block);
    EXPECT_EQ(info.identifier, decltype(info.identifier){});
    EXPECT_EQ(info.xResolution, 100.0);
    EXPECT_EQ(info.yResolution, 100.0);
    EXPECT_EQ(info.resolutionUnit, 2);
    EXPECT_EQ(info.width + info.height + info.imageCount, 0);
    EXPECT_EQ(info.activeImage, -1);
    EXPECT_EQ(info.version, 1);
    EXPECT_FALSE(info.isLayered || info.hasProfile || info.hasThumbnail || info.hasMetadata);
    EXPECT_EQ(info.title.length() + info.author.length() + info.comment.length(), 0U);
}

TEST(FileIO, ReadsSizes) {
    TempFolder folder;
    const HelperProgram helper;
    const Ref<znGdiPlusFileIO> io(new znGdiPlusFileIO);
    ImageFileInfo info;
    EXPECT_TRUE(io->readHeader(ImageDescriptor(named(picture("rocket.jpg"))), info));
    EXPECT_EQ(info.width, 640);
    EXPECT_EQ(info.height, 427);
    EXPECT_EQ(info.imageCount, 1);
    EXPECT_FALSE(io->readHeader(ImageDescriptor(named(picture("missing.png"))), info));

    std::int32_t width = 1, height = 2;
    EXPECT_TRUE(io->getImageSize(named(picture("chelsea.png")), width, height));
    EXPECT_EQ(width, 451);
    EXPECT_EQ(height, 300);
    EXPECT_TRUE(io->getImageSize(named(picture("missing.png")), width, height));
    EXPECT_EQ(width + height, 0);
    EXPECT_TRUE(folder.leftovers().empty());
}

// What this process can't open, the helper may: here one that knows all sizes.
TEST(FileIO, AsksTheHelperForSizesThatItCantRead) {
    TempFolder folder;
    RequestRecord record;
    record.setSize(70000, 3);
    ASSERT_TRUE(writeRecord(wide(folder.file("answer")), record));
    const HelperProgram helper(
        test::shellHelper(folder, "cp '" + folder.file("answer") + "' \"$answer\""));
    const Ref<znGdiPlusFileIO> io(new znGdiPlusFileIO);
    ImageFileInfo info;
    EXPECT_TRUE(io->readHeader(ImageDescriptor(named(picture("../README.md"))), info));
    EXPECT_EQ(info.width, 70000);
    EXPECT_EQ(info.height, 3);
    EXPECT_TRUE(folder.leftovers().empty());
}

TEST(FileIO, LoadsInTheEnginesOrderWithItsFacts) {
    const Ref<znGdiPlusFileIO> io(new znGdiPlusFileIO);
    ImageFileInfo info;
    info.width = 5;
    ImageDescriptor descriptor(named(picture("cup-dpi300x150.jpg")));
    descriptor.info = &info;
    ASSERT_TRUE(io->loadImage(descriptor));
    EXPECT_EQ(descriptor.format, znString::CString("JPEG"));
    EXPECT_EQ(info.xResolution, 300.0);
    EXPECT_EQ(info.yResolution, 150.0);
    EXPECT_EQ(info.resolutionUnit, 2);
    EXPECT_EQ(info.width, 0) << "reset";

    // A known pattern, red first and the bottom row first, colours times alpha.
    ImageDescriptor pattern(named(std::string(BRUSHWORK_TEST_DATA) + "/clipboard/rgba.tif"));
    ASSERT_TRUE(io->loadImage(pattern));
    const Bytes pixels = pixelsOf(*pattern.image);
    for (int y = 0; y < 7; ++y)
        for (int x = 0; x < 13; ++x) {
            const std::uint8_t* pixel = &pixels[static_cast<std::size_t>((6 - y) * 13 + x) * 4];
            const int alpha = 255 - x * y;
            EXPECT_EQ(pixel[3], alpha);
            EXPECT_EQ(pixel[0], (x * 19 % 256 * alpha + 127) / 255);
            EXPECT_EQ(pixel[1], (y * 37 % 256 * alpha + 127) / 255);
            EXPECT_EQ(pixel[2], (x * y * 3 % 256 * alpha + 127) / 255);
        }

    descriptor.filename = named(picture("missing.png"));
    EXPECT_FALSE(io->loadImage(descriptor));
    EXPECT_FALSE(descriptor.image);
}

// An image that can be read only after some tries: the bitmap fails, the helper's strips succeed.
class LateImage final : public ilSPMemoryImg {
  public:
    LateImage(std::int32_t width, std::int32_t height, std::int32_t channels)
        : ilSPMemoryImg(width, height, channels) {
        std::mt19937 random(3);
        // Premultiplied: no colour above its alpha.
        for (std::size_t i = 0; i < byteSize(); ++i) data()[i] = std::uint8_t(random() % 40 + 200);
        for (std::size_t i = 3; channels == 4 && i < byteSize(); i += 4) data()[i] |= 0xF0;
        for (std::size_t i = 0; channels == 4 && i < byteSize(); ++i)
            data()[i] = std::min(data()[i], data()[i | 3]);
    }
    int failures = 0;
    std::int32_t readRegion(const ilTile& box, void* buffer, const ilTile& frame,
                            const ilImageConfig* config) override {
        if (failures > 0) {
            --failures;
            return ImageUnusable;
        }
        return ilSPMemoryImg::readRegion(box, buffer, frame, config);
    }
};

TEST(FileIO, SavesTheSamePictureThroughTheHelper) {
    TempFolder folder;
    const HelperProgram helper;
    const Ref<znGdiPlusFileIO> io(new znGdiPlusFileIO);
    ImageFileInfo info;
    info.resolutionUnit = DotsPerCentimetre;
    info.xResolution = 50.0;
    info.yResolution = 100.0;
    for (const std::int32_t channels : {1, 4})
        for (const char* format : {"BMP", "JPEG", "PNG", "GIF", "TIFF"}) {
            const Ref<LateImage> image(new LateImage(61, 300, channels));
            ImageDescriptor here(named(folder.file("here")));
            here.image = image;
            here.format = format;
            here.info = &info;
            ImageDescriptor there = here;
            there.filename = named(folder.file("there"));
            ASSERT_TRUE(io->saveImage(here, true, 40)) << format;
            image->failures = 1;
            ASSERT_TRUE(io->saveImage(there, true, 40)) << format;
            EXPECT_EQ(image->failures, 0);
            EXPECT_TRUE(readBytes(folder.file("here")) == readBytes(folder.file("there")))
                << format << " " << channels;
        }
    EXPECT_TRUE(folder.leftovers().empty());
}

TEST(FileIO, OpenAndSaveKeepColours) {
    TempFolder folder;
    const Ref<znGdiPlusFileIO> io(new znGdiPlusFileIO);
    for (const char* name : {"cup-rgba-zip.tif", "tbbn3p08.png", "rocket.jpg", "pal8.bmp"}) {
        ImageDescriptor descriptor(named(picture(name)));
        ASSERT_TRUE(io->loadImage(descriptor));
        const Bytes pixels = pixelsOf(*descriptor.image);
        for (const char* format : {"PNG", "TIFF", "BMP"}) {
            descriptor.format = format;
            descriptor.filename = named(folder.file("saved"));
            ASSERT_TRUE(io->saveImage(descriptor, false, 0));
            ImageDescriptor again(descriptor.filename);
            ASSERT_TRUE(io->loadImage(again));
            EXPECT_TRUE(pixelsOf(*again.image) == pixels) << name << " " << format;
        }
    }
}

TEST(FileIO, SavingTakesFormatQualityAndResolution) {
    TempFolder folder;
    const HelperProgram helper;
    const Ref<znGdiPlusFileIO> io(new znGdiPlusFileIO);
    ImageDescriptor descriptor(named(picture("rocket.jpg")));
    ImageFileInfo info;
    descriptor.info = &info;
    ASSERT_TRUE(io->loadImage(descriptor));
    descriptor.filename = named(folder.file("saved"));
    const auto resolution = [&](std::int32_t unit, double x, double y) {
        info.resolutionUnit = unit;
        info.xResolution = x;
        info.yResolution = y;
        EXPECT_TRUE(io->saveImage(descriptor, true, 90));
        const auto bitmap = Gdiplus::Bitmap::fromFile(descriptor.filename.path().view());
        return std::pair(bitmap.xResolution(), bitmap.yResolution());
    };
    using Pair = std::pair<float, float>;
    EXPECT_EQ(resolution(2, 300.0, 150.0), Pair(300.0F, 150.0F));
    EXPECT_EQ(resolution(3, 100.0, 50.0), Pair(254.0F, 127.0F));
    EXPECT_EQ(resolution(2, 300.0, 0.0), Pair(96.0F, 96.0F));
    EXPECT_EQ(resolution(2, 1e-60, 300.0), Pair(96.0F, 96.0F)) << "0 as a float";
    EXPECT_EQ(resolution(7, 300.0, 300.0), Pair(96.0F, 96.0F));

    const auto large = readBytes(folder.file("saved")).size();
    ASSERT_TRUE(io->saveImage(descriptor, true, 5));
    EXPECT_LT(readBytes(folder.file("saved")).size() * 3, large);

    for (const char* format : {"", "png", "WEBP", "JPG"}) {
        descriptor.format = format;
        EXPECT_FALSE(io->saveImage(descriptor, false, 0)) << format;
    }
    descriptor.format = "PNG";
    descriptor.image.reset();
    EXPECT_FALSE(io->saveImage(descriptor, false, 0));
    EXPECT_TRUE(folder.leftovers().empty());
}

}  // namespace
}  // namespace brushwork
