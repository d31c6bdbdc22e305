// znImageFileIO: the base of classes that read and write pictures.
#pragma once

#include "brushwork/export.h"
#include "brushwork/zn_file_io.h"

namespace brushwork {

class BRUSHWORK_API znImageFileIO : public znFileIO {
  protected:
    znImageFileIO();
    ~znImageFileIO() override;

  public:
    [[nodiscard]] virtual bool keepsLayers() = 0;  // 12
    // Pixels. Written also where the answer is false.
    [[nodiscard]] virtual bool getImageSize(const znOS::Filename& filename, std::int32_t& width,
                                            std::int32_t& height) = 0;  // 13
    // Replaces the descriptor's image by the picture that its filename names, or by null.
    [[nodiscard]] virtual bool loadImage(ImageDescriptor& descriptor) = 0;  // 14
    [[nodiscard]] virtual bool keepsMetadata();                             // 15: false
};

}  // namespace brushwork
