#include "platform/scratch_file.h"

#include "platform/clean_up.h"
#include "platform/file_calls.h"

namespace brushwork::platform {

bool ScratchFile::open() {
    const EndingHold hold;  // while the file has a name
    if (!makeUniqueFile(temporaryDirectory(), u"ZNC", path_).ok()) {
        path_.clear();
        return false;
    }
    const bool opened = file_.open(path_, PositionedFile::Mode::ReadWrite);
    if (unlinkFile(path_).ok()) path_.clear();
    return opened;
}

ScratchFile::~ScratchFile() {
    file_.close();
    if (!path_.empty()) static_cast<void>(unlinkFile(path_));
}

bool ScratchFile::readAt(std::uint64_t offset, void* buffer, std::size_t count) {
    return file_.readAt(offset, buffer, count) == count;
}

bool ScratchFile::writeAt(std::uint64_t offset, const void* bytes, std::size_t count) {
    return file_.writeAt(offset, bytes, count);
}

}  // namespace brushwork::platform
