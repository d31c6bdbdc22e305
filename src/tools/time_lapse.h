// TimeLapse: a picture of what is painted, every so many operations.
//
//     TimeLapse lapse(paint, "out/step-", 25);
//     after each operation: if (auto fault = lapse.operationRun()) ...
//     if (auto fault = lapse.finish()) ...
//
// Pictures are numbered from 1 without gaps: out/step-000001.png ... They show the canvas in front,
// an open stroke included as far as it is drawn.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "brushwork/paint_manager.h"
#include "tools/picture_files.h"

namespace brushwork::tools {

class TimeLapse {
  public:
    // `every` operations; 0 counts as 1. The manager outlives the object.
    TimeLapse(PaintManager& paint, std::string prefix, std::uint64_t every);

    // While no canvas is in front the operation counts, but its picture is left out.
    [[nodiscard]] std::optional<PictureFault> operationRun();
    // The last picture, where operations were run since the one before.
    [[nodiscard]] std::optional<PictureFault> finish();
    [[nodiscard]] std::uint64_t pictures() const { return pictures_; }

  private:
    [[nodiscard]] std::optional<PictureFault> take();

    PaintManager& paint_;
    std::string prefix_;
    std::uint64_t every_;
    std::uint64_t pictures_ = 0;
    std::uint64_t waiting_ = 0;  // operations since the last picture
};

}  // namespace brushwork::tools
