#include "platform/swap_io.h"

#include <utility>

namespace brushwork::platform {

PositionedFile::PositionedFile(PositionedFile&& other) noexcept
    : handle_(std::exchange(other.handle_, closed)) {}

PositionedFile& PositionedFile::operator=(PositionedFile&& other) noexcept {
    if (this != &other) {
        close();
        handle_ = std::exchange(other.handle_, closed);
    }
    return *this;
}

PositionedFile::~PositionedFile() {
    close();
}

}  // namespace brushwork::platform
