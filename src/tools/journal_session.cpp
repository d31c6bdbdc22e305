#include "tools/journal_session.h"

#include <utility>

namespace brushwork::tools {

JournalSession::JournalSession(ReferenceHost& itsHost, std::filesystem::path itsFolder)
    : host(itsHost), folder(std::move(itsFolder)) {
    setUndoDatabase(&undo);
    brush.brush.radiusLow = 1.0f;
    brush.brush.opacityLow = 1.0f;
    brush.applyTo(paint);
}

JournalSession::~JournalSession() {
    paint.cancelStroke();
    setUndoDatabase(nullptr);
}

std::string JournalSession::pathOf(const std::string& name) const {
    return (folder / name).string();
}

Problem JournalSession::layerOf(const Operation& op, std::int32_t& id,
                                const std::string& field) const {
    if (!paint.hasCanvas(activeOne)) return noCanvas;
    if (!op.has(field)) {
        id = paint.activeLayerId();
        return id < 0 ? Problem("there is no active layer") : std::nullopt;
    }
    const auto found = layers.find(op.text(field));
    if (found != layers.end() && paint.canvasOfLayer(found->second) == paint.currentCanvas()) {
        id = found->second;
        return std::nullopt;
    }
    return "the canvas has no layer \"" + op.text(field) + "\" now";
}

Problem JournalSession::layersOf(const Operation& op, std::vector<std::int32_t>& ids,
                                 const std::string& field) const {
    if (!paint.hasCanvas(activeOne)) return noCanvas;
    for (const std::string& name : op.names(field)) {
        const auto found = layers.find(name);
        if (found == layers.end() || paint.canvasOfLayer(found->second) != paint.currentCanvas())
            return "the canvas has no layer \"" + name + "\" now";
        ids.push_back(found->second);
    }
    if (!op.has(field)) ids.push_back(paint.activeLayerId());
    return std::nullopt;
}

Problem JournalSession::enter(const Operation& op) {
    std::int32_t id = -1;
    if (auto problem = layerOf(op, id)) return problem;
    if (id == paint.activeLayerId() || paint.setActiveLayer(id)) return std::nullopt;
    return "the layer can't become the active one";
}

void JournalSession::nameActive(const Operation& op, const std::string& field) {
    if (op.has(field)) layers[op.text(field)] = paint.activeLayerId();
}

std::string JournalSession::titleOf(const LayerDigest& layer) const {
    for (const auto& [name, id] : layers)
        if (id == layer.id) return name;
    return layer.name;
}

Problem JournalSession::picture(const Operation& op, const std::string& field, PictureUse use,
                                ImageRef& image) const {
    const auto fault = readPicture(pathOf(op.text(field)), use, image);
    return fault ? Problem(fault->message) : std::nullopt;
}

Problem JournalSession::save(const std::string& path, std::optional<std::int32_t> quality) {
    if (!paint.hasCanvas(activeOne)) return noCanvas;
    const ilTile box = paint.canvasBounds(activeOne);
    std::vector<std::uint8_t> pixels(std::size_t{4} * static_cast<std::size_t>(box.nx) *
                                     static_cast<std::size_t>(box.ny));
    if (!paint.readFlatImage(activeOne, pixels.data())) return "the picture can't be composed";
    const auto fault = writePicture(path, box.nx, box.ny, pixels, quality);
    return fault ? Problem(fault->message) : std::nullopt;
}

std::string JournalSession::digestText(const std::string& indent) {
    const DocumentDigest digest = digestDocument(paint);
    std::string text =
        indent + "document " + digest.document + "  display " + digest.display + "\n";
    for (const LayerDigest& layer : digest.layers)
        text += indent + "  layer " + layer.digest + "  " +
                std::string(static_cast<std::size_t>(2 * layer.depth), ' ') + titleOf(layer) + "\n";
    return text + indent + "  selection " + digest.selection + timelineText(indent);
}

std::string JournalSession::timelineText(const std::string& indent) {
    const std::size_t count = animation.frameCount();
    if (count == 0) return {};
    std::string text = "\n" + indent + "timeline to " + std::to_string(animation.lastFrame()) +
                       ", " + std::to_string(animation.currentFrame()) + " shown";
    for (std::size_t n = 0; n < count; ++n) {
        const Ref<AnimFrame> frame = animation.frameAt(n);
        text += "\n" + indent + "  frame " + std::to_string(frame->frameNumber) + " " +
                digestOfPicture(paint, frame->canvasIndex());
    }
    return text;
}

}  // namespace brushwork::tools
