#include "brushwork/zn_file_io.h"

namespace brushwork {

using znString::IString;

znFileIO::znFileIO() = default;
znFileIO::~znFileIO() = default;

bool znFileIO::readHeader(const ImageDescriptor&, ImageFileInfo& info) {
    info.width = 100;
    info.height = 100;
    info.imageCount = 1;
    return true;
}

bool znFileIO::hasSettings() {
    return false;
}

std::int32_t znFileIO::layerCount(const ImageDescriptor&) {
    return 0;
}

IString znFileIO::layerName(const ImageDescriptor&, std::int32_t) {
    return {};
}

bool znFileIO::loadLayer(ImageDescriptor&, std::int32_t) {
    return false;
}

IString znFileIO::readFilter(std::size_t index) const {
    return index < readFilters_.size() ? readFilters_[index] : IString();
}

IString znFileIO::readExtension(std::size_t index) const {
    return index < readExtensions_.size() ? readExtensions_[index] : IString();
}

}  // namespace brushwork
