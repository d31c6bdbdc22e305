// What a file-IO class is told of a picture and tells of it.
#pragma once

#include <array>
#include <cstdint>
#include <memory>

#include "brushwork/c_string.h"
#include "brushwork/export.h"
#include "brushwork/filename.h"
#include "brushwork/image_file_params.h"
#include "brushwork/ref.h"

namespace brushwork {

class ilImage;

// The metadata of one picture file. Sizes and resolutions are filled in by znGdiPlusFileIO; the
// rest is room for classes that keep more of a file, and stays as reset() leaves it.
struct BRUSHWORK_API ImageFileInfo {
    std::array<std::unique_ptr<std::uint8_t[]>, 8> blocks;
    std::array<std::uint8_t, 16> identifier{};
    double xResolution = 100.0;
    double yResolution = 100.0;
    std::int32_t compression = 0;
    std::int32_t resolutionUnit = DotsPerInch;  // of ResolutionUnit
    std::int32_t width = 0;                     // pixels
    std::int32_t height = 0;
    std::int32_t imageCount = 0;
    std::int32_t imageIndex = 0;
    std::int32_t orientation = 0;
    bool isLayered = false;
    std::int32_t activeImage = -1;
    std::int16_t version = 1;
    std::int32_t flags = 0;
    const void* hostBlock = nullptr;  // the host's own; never freed or changed here
    bool hasProfile = false;
    bool hasThumbnail = false;
    bool hasMetadata = false;
    znString::CString title;
    znString::CString author;
    znString::CString comment;

    ImageFileInfo();
    ImageFileInfo(const ImageFileInfo&) = delete;
    ImageFileInfo& operator=(const ImageFileInfo&) = delete;
    ~ImageFileInfo();

    // Frees the blocks and puts every field back to the value above, but for hostBlock.
    void reset();
};

// A picture on its way between file and host.
struct BRUSHWORK_API ImageDescriptor {
    Ref<ilImage> image;
    znOS::Filename filename;
    znString::CString format;       // "BMP", "JPEG", "PNG", "GIF" or "TIFF"; the reader fills it in
    ImageFileInfo* info = nullptr;  // borrowed; null if nobody asks

    ImageDescriptor();
    explicit ImageDescriptor(const znOS::Filename& file);
    ImageDescriptor(const ImageDescriptor& other);
    ImageDescriptor& operator=(const ImageDescriptor& other);
    ~ImageDescriptor();
};

}  // namespace brushwork
