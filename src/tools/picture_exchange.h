// Pictures for the command line, through the helper process and its record, never in process.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "bridge/bridge_exchange.h"
#include "brushwork/i_string.h"
#include "tools/exit_codes.h"

namespace brushwork::tools {

struct PictureFacts {
    std::int32_t width = 0;
    std::int32_t height = 0;
    double xResolution = 0.0;  // dots per inch
    double yResolution = 0.0;
    std::string format;  // "PNG", ...; empty where only the size was asked for
};

// Why an exchange failed, in words for a person.
struct Failure {
    ExitCode code = ExitFailed;
    std::string message;
};

// A picture whose pixels stand in an exchange file, removed with the object.
class OpenedPicture {
  public:
    // The helper decodes the file.
    [[nodiscard]] std::optional<Failure> open(const std::string& path);
    // Makes the pixels straight, as encoders want them.
    [[nodiscard]] std::optional<Failure> straighten();
    [[nodiscard]] const PictureFacts& facts() const { return facts_; }
    [[nodiscard]] const znString::IString& pixelsPath() const { return pixels_.path(); }

  private:
    PictureFacts facts_;
    ExchangeFile pixels_;
};

// The helper reads the header only: a picture damaged further on isn't noticed.
[[nodiscard]] std::optional<Failure> readPictureSize(const std::string& path, PictureFacts& facts);

struct SaveOptions {
    std::string format;                   // one of the five names
    std::optional<std::int32_t> quality;  // 0 to 100
    std::optional<double> dotsPerInch;    // else the picture's own resolution
};

// The helper encodes the picture's pixels, which must be straight, into the file.
[[nodiscard]] std::optional<Failure> savePicture(const OpenedPicture& picture,
                                                 const std::string& path,
                                                 const SaveOptions& options);

}  // namespace brushwork::tools
