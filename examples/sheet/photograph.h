// Photographs between files and images.
#pragma once

#include <functional>
#include <string>

#include "brushwork/ref.h"
#include "image/work/il_sp_memory_img.h"

namespace sheet {

// The picture in a file, opaque: what is transparent in it shows `paper`. Null, with `trouble`
// telling why, if it can't be opened or is too large for memory.
[[nodiscard]] brushwork::Ref<brushwork::ilSPMemoryImg> openPhotograph(const std::string& path,
                                                                      std::uint8_t paper,
                                                                      std::string& trouble);
// Writes an opaque picture of 4 channels as PNG.
[[nodiscard]] bool savePhotograph(const std::string& path, brushwork::ilSPMemoryImg& image,
                                  std::string& trouble);

// The program "PHOTOGRAPH OUT.png" that draws a sheet of a picture, on such a paper: its exit code.
// Without memory `draw` answers null, or an image without pixels.
[[nodiscard]] int runSheet(int argc, char** argv, std::uint8_t paper,
                           const std::function<brushwork::Ref<brushwork::ilSPMemoryImg>(
                               brushwork::Ref<brushwork::ilSPMemoryImg> photograph)>& draw);

}  // namespace sheet
