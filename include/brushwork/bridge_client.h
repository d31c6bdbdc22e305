// Pictures through the helper process InkAtelierBridge, so that decoders and their memory needs
// stay outside the host's own process.
//
//     const znString::IString path("photo.jpg");
//     const ImageRef photo = openPictureThroughBridge(path);
//     manager.newImageLayer(photo, 0, 0);
//     ...
//     savePictureThroughBridge(picture, width, height, path, "PNG");
//
// Each call starts one helper, waits for its end without a limit, and leaves no temporary file
// behind, however the helper ended. A failure is a false or a null and gives no reason; without a
// helper beside the program every call fails at once. Any thread may call, and several at once;
// images in memory are shared between threads only while the engine's memory manager is on.
//
// A host takes openPictureThroughBridge and savePictureThroughBridge: their pixels are as layers
// have them. The two others pass pixels as they are in the file between the processes: rows from
// the bottom up; with four channels blue, green, red, alpha; alpha premultiplied for PNG and
// straight for every other format. Saving takes straight alpha.
#pragma once

#include <cstdint>

#include "brushwork/c_string.h"
#include "brushwork/export.h"
#include "brushwork/i_string.h"
#include "brushwork/image_file_params.h"
#include "brushwork/image_ref.h"
#include "brushwork/ref.h"

namespace brushwork {

class ilImage;
class ilSmartImage;

// Size in pixels, from the file's header. Written only on success.
[[nodiscard]] BRUSHWORK_API bool getSizeThroughBridge(const znString::IString& path,
                                                      std::int32_t& width, std::int32_t& height);

// The picture as a new image of four channels (red, green, blue, alpha, premultiplied) whose lower
// left corner lies at 0, 0. No image on failure, as below. `params`, if given, receives size and
// dots per inch.
[[nodiscard]] BRUSHWORK_API ImageRef openPictureThroughBridge(const znString::IString& path,
                                                              ImageFileParams* params = nullptr);

// The pixels of an image, of four channels as layers have them, from 0, 0 to that width and height.
// `format` and `params` as below. False, too, for no image, one channel, and sizes below 1.
[[nodiscard]] BRUSHWORK_API bool savePictureThroughBridge(const ImageRef& image, std::int32_t width,
                                                          std::int32_t height,
                                                          const znString::IString& path,
                                                          const znString::CString& format,
                                                          const ImageFileParams* params = nullptr);

// A new image; its fill is transparent and its corner lies at 0, 0. Null on failure, and for a
// picture wider or higher than 102400 pixels. `format` plays no part. `params`, if given, goes out
// with the request and receives what the helper told of the picture (its size, 4 channels, dots per
// inch), also when only the pixels failed to arrive.
[[nodiscard]] BRUSHWORK_API Ref<ilSmartImage> openFromFileThroughBridge(
    const znString::IString& path, const znString::CString& format,
    ImageFileParams* params = nullptr);

// `format` is "BMP", "JPEG", "PNG", "GIF" or "TIFF". Of `params`, which may be null, quality,
// resolutions and their unit count. The image's pixels from 0, 0 to its width and height go out
// with as many channels as it has, as bytes; only four of them give a faithful picture. A file that
// was there survives a failure. When the helper's answer tells of another size than was sent the
// call fails, though the file may have been written.
[[nodiscard]] BRUSHWORK_API bool saveToFileThroughBridge(ilImage* image,
                                                         const znString::IString& path,
                                                         const znString::CString& format,
                                                         const ImageFileParams* params = nullptr);

// Where the helper stands, if not beside the running program; an empty path takes that back. Calls
// that have begun aren't affected.
BRUSHWORK_API void setBridgeProgram(const znString::IString& path);

}  // namespace brushwork
