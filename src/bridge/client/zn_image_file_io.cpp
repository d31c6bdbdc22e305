#include "brushwork/zn_image_file_io.h"

namespace brushwork {

znImageFileIO::znImageFileIO() = default;
znImageFileIO::~znImageFileIO() = default;

bool znImageFileIO::keepsMetadata() {
    return false;
}

}  // namespace brushwork
