// znGdiPlusFileIO: pictures through the imaging service of this process, with the helper process as
// the way out when memory is short.
//
//     const Ref<znGdiPlusFileIO> io(new znGdiPlusFileIO);
//     ImageDescriptor picture(filename);
//     if (io->loadImage(picture)) ...      // picture.image, picture.format
//     picture.format = "PNG";
//     if (io->saveImage(picture, false, 0)) ...
//
// Images have the engine's channel order and premultiplied alpha, their bottom row first, whichever
// process did the work: what is opened and saved again keeps its colours.
//
// On Windows the host starts the imaging platform before it uses this class.
#pragma once

#include "brushwork/export.h"
#include "brushwork/zn_image_file_io.h"

namespace brushwork {

// Reads BMP, JPEG, GIF and PNG by its filters; TIFF files open and save as well, but no filter or
// extension offers them.
class BRUSHWORK_API znGdiPlusFileIO : public znImageFileIO {
  public:
    znGdiPlusFileIO();

  protected:
    ~znGdiPlusFileIO() override;

  public:
    [[nodiscard]] bool canRead() override;                           // true
    [[nodiscard]] bool canWrite() override;                          // true
    [[nodiscard]] bool acceptsFile(const znOS::Filename&) override;  // true
    // Sets image count 1, width and height. A file that this process can't open is asked for
    // through the helper.
    [[nodiscard]] bool readHeader(const ImageDescriptor& descriptor, ImageFileInfo& info) override;
    [[nodiscard]] bool readMetadata(ImageDescriptor&) override;   // false
    [[nodiscard]] bool writeMetadata(ImageDescriptor&) override;  // false
    [[nodiscard]] bool keepsLayers() override;                    // false
    // True with zeros for a file that can't be decoded.
    [[nodiscard]] bool getImageSize(const znOS::Filename& filename, std::int32_t& width,
                                    std::int32_t& height) override;
    // Fills in the format too, and, if there is an info, resets it and gives it the file's
    // resolutions in dots per inch.
    [[nodiscard]] bool loadImage(ImageDescriptor& descriptor) override;

    // Writes the descriptor's image, of 1 or 4 channels, in its format, with the resolutions of its
    // info if it has one. `quality` is 0 to 100, for JPEG. A picture of 1 channel is saved as white
    // whose opacity is the image's value.
    [[nodiscard]] bool saveImage(const ImageDescriptor& descriptor, bool hasQuality,
                                 std::int32_t quality);
};

}  // namespace brushwork
