#include "brushwork/image_file_info.h"

#include "image/chain/il_image.h"

namespace brushwork {

ImageFileInfo::ImageFileInfo() = default;
ImageFileInfo::~ImageFileInfo() = default;

void ImageFileInfo::reset() {
    for (auto& block : blocks) block.reset();
    identifier = {};
    xResolution = 100.0;
    yResolution = 100.0;
    compression = 0;
    resolutionUnit = DotsPerInch;
    width = 0;
    height = 0;
    imageCount = 0;
    imageIndex = 0;
    orientation = 0;
    isLayered = false;
    activeImage = -1;
    version = 1;
    flags = 0;
    hasProfile = false;
    hasThumbnail = false;
    hasMetadata = false;
    title.clear();
    author.clear();
    comment.clear();
}

ImageDescriptor::ImageDescriptor() = default;
ImageDescriptor::ImageDescriptor(const znOS::Filename& file) : filename(file) {}
ImageDescriptor::ImageDescriptor(const ImageDescriptor&) = default;
ImageDescriptor& ImageDescriptor::operator=(const ImageDescriptor&) = default;
ImageDescriptor::~ImageDescriptor() = default;

}  // namespace brushwork
