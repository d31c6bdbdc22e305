// A look at the first directory of a TIFF file before the library sees it.
#pragma once

#include "platform/byte_stream.h"

namespace brushwork::platform {

// The library keeps a copy of every value of a directory, known or not, and values may overlap in
// the file: one megabyte can be made to stand for gigabytes. Here the values of the first directory
// must fit the file side by side, and their number must be that of a picture. False too where the
// header or the directory is cut off.
[[nodiscard]] bool tiffDirectoryIsSane(ByteSource& source);

}  // namespace brushwork::platform
