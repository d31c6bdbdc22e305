// Frames of an animation as files: numbered PNGs, or one animated GIF.
//
//     if (auto fault = exportFramePngs(animation, paint, "out/walk-")) ...   // out/walk-0001.png
//     ... if (auto fault = exportFrameGif(animation, paint, "walk.gif", {12.0})) ...
//
// All numbers from 1 to lastFrame count, holds included. Neither what is shown nor the undo list
// changes. Folders that are missing are made. After a fault files that were complete stay.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "brushwork/animation_manager.h"
#include "tools/picture_files.h"

namespace brushwork::tools {

// Numbers that show one canvas. In front of the first frame that is the base's.
struct FrameRun {
    std::uint32_t first = 1;
    std::uint32_t last = 1;
    std::int32_t canvas = -1;
};
// Without gaps, from 1 to lastFrame.
[[nodiscard]] std::vector<FrameRun> frameRuns(const AnimationManager& animation);

// A file for each number, so that holds last as long as in the timeline; or for each run alone,
// named by its first number.
enum class FrameFiles { EachNumber, EachRun };

// The path is the prefix, the number in four digits, and ".png".
[[nodiscard]] std::optional<PictureFault> exportFramePngs(
    const AnimationManager& animation, PaintManager& paint, const std::string& prefix,
    FrameFiles files = FrameFiles::EachNumber);

struct FrameGif {
    double framesPerSecond = 12.0;  // numbers of the timeline; 0.01 to 100
    std::uint16_t plays = 0;        // 0: without end
};

// A picture a run, shown as long as its numbers last, to the hundredth of a second: what rounding
// takes from one run the next one gets. Canvases of different sizes stand in the lower left corner
// of the largest. The file comes into place when it is whole.
[[nodiscard]] std::optional<PictureFault> exportFrameGif(const AnimationManager& animation,
                                                         PaintManager& paint,
                                                         const std::string& path,
                                                         const FrameGif& settings = {});

}  // namespace brushwork::tools
