// JournalSession: what a journal works on: a manager with its undo, and everything that was named.
#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "brushwork/animation_manager.h"
#include "brushwork/paint_manager.h"
#include "tools/brush_presets.h"
#include "tools/digests.h"
#include "tools/host_undo_stack.h"
#include "tools/operation.h"
#include "tools/picture_files.h"
#include "tools/reference_host.h"
#include "tools/reference_shape.h"

namespace brushwork::tools {

// The cause that many operations share.
inline constexpr const char* noCanvas = "there is no canvas";

inline constexpr std::int32_t activeOne = -2;  // layer, or canvas

// Why an operation could not be done.
using Problem = std::optional<std::string>;

struct SessionFigures {
    std::uint64_t strokes = 0;
    std::uint64_t points = 0;
    std::uint64_t undone = 0, redone = 0;
};

class JournalSession {
  public:
    // Paths of operations count from `folder`. The host must outlast the session.
    JournalSession(ReferenceHost& host, std::filesystem::path folder);
    JournalSession(const JournalSession&) = delete;
    JournalSession& operator=(const JournalSession&) = delete;
    ~JournalSession();

    [[nodiscard]] std::string pathOf(const std::string& name) const;
    // The layer of a field, or the active one if the field isn't there. A problem if the current
    // canvas has no such layer now.
    [[nodiscard]] Problem layerOf(const Operation& op, std::int32_t& id,
                                  const std::string& field = "layer") const;
    [[nodiscard]] Problem layersOf(const Operation& op, std::vector<std::int32_t>& ids,
                                   const std::string& field = "layers") const;
    // Makes the layer of the field the active one.
    [[nodiscard]] Problem enter(const Operation& op);
    // Gives the active layer the name in the field, if there is one.
    void nameActive(const Operation& op, const std::string& field = "as");
    // The script's name of a layer; else the document's.
    [[nodiscard]] std::string titleOf(const LayerDigest& layer) const;
    // A picture of the file in the field.
    [[nodiscard]] Problem picture(const Operation& op, const std::string& field, PictureUse use,
                                  ImageRef& image) const;
    // Where frames start, and what they show; empty without frames.
    [[nodiscard]] std::string timelineText(const std::string& indent);
    // The flat picture of the current canvas.
    [[nodiscard]] Problem save(const std::string& path, std::optional<std::int32_t> quality);
    // Digests in the form that is printed; `indent` before each line.
    [[nodiscard]] std::string digestText(const std::string& indent);

    ReferenceHost& host;
    std::filesystem::path folder;
    std::function<void(const std::string& line)> print;  // for a person or a test to read

    // The engine asks for the curves of shapes as long as an undo record knows them.
    std::vector<std::unique_ptr<ReferenceShape>> shapeOutlines;
    PaintManager paint;
    AnimationManager animation{paint};
    HostUndoStack undo;  // its records go before the managers
    BrushPreset brush;
    SessionFigures figures;

    std::map<std::string, std::int32_t> canvases, layers, shapes;
    std::set<std::int32_t> surfaceCanvases;  // that are on surfaces of the host's
    std::vector<std::string> messages;       // what the engine last had to say to the user
    std::map<std::string, std::unique_ptr<ReferenceCurve>> curves;
    std::map<std::string, BrushPreset> brushes;
    std::map<std::string, std::string> hashes;
};

}  // namespace brushwork::tools
