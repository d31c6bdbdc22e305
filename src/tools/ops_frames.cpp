#include <algorithm>

#include "tools/frame_export.h"
#include "tools/op_row.h"

namespace brushwork::tools {
namespace {

constexpr std::int32_t highest = static_cast<std::int32_t>(maxFrameNumber);

std::string shown(std::uint32_t number) {
    return std::to_string(number);
}

std::uint32_t numberIn(const Operation& op, const std::string& field, std::uint32_t fallback) {
    return op.has(field) ? static_cast<std::uint32_t>(op.integer(field)) : fallback;
}

// The number in the field, or the one that is shown; a frame shows there.
Problem framed(const JournalSession& session, const Operation& op, std::uint32_t& number,
               std::size_t& place) {
    const AnimationManager& animation = session.animation;
    number = numberIn(op, "number", animation.currentFrame());
    if (animation.frameCount() == 0) return "there are no frames yet";
    if (number > animation.lastFrame())
        return "the timeline ends at " + shown(animation.lastFrame());
    return problemUnless(animation.findFrame(number, place),
                         "no frame starts at that number or before it");
}

// The number behind the last one that a frame at this number would hold.
std::uint32_t endOfHold(const AnimationManager& animation, std::uint32_t number) {
    for (std::size_t n = 0; n < animation.frameCount(); ++n)
        if (const auto start = animation.frameAt(n)->frameNumber; start > number) return start;
    return std::max(animation.lastFrame(), number) + 1;
}

Problem checkHold(const AnimationManager& animation, std::uint32_t number, std::uint32_t hold) {
    const std::uint32_t end = endOfHold(animation, number);
    const std::uint32_t last = std::max(animation.lastFrame(), number);
    if (number + hold <= end || last + (number + hold - end) <= maxFrameNumber) return std::nullopt;
    return "the timeline would end behind " + shown(maxFrameNumber);
}

// What comes behind the frame moves along. Checked before.
Problem setHold(AnimationManager& animation, std::size_t place, std::uint32_t hold) {
    const std::uint32_t number = animation.frameAt(place)->frameNumber;
    const std::uint32_t end = endOfHold(animation, number), shownNow = animation.currentFrame();
    bool done = true;
    for (std::uint32_t over = end; over > number + hold; --over)
        done = animation.deleteFrame(number + hold) && done;
    if (number + hold > end) {
        const std::uint32_t more = number + hold - end, last = animation.lastFrame();
        for (std::size_t n = animation.frameCount(); --n > place;) {
            const std::uint32_t start = animation.frameAt(n)->frameNumber;
            done = animation.reorderFrames(start, start + more) && done;
        }
        done = animation.setLastFrame(last + more) && done;
    }
    if (animation.currentFrame() != shownNow && shownNow <= animation.lastFrame())
        done = animation.switchFrame(shownNow) && done;
    return problemUnless(done, "the frames behind it can't be moved");
}

Problem runFrame(JournalSession& session, const Operation& op) {
    AnimationManager& animation = session.animation;
    const std::uint32_t number = numberIn(op, "number", animation.lastFrame() + 1);
    if (number > maxFrameNumber) return "frames end at " + shown(maxFrameNumber);
    if (animation.numberOccupied(number)) return "a frame starts at " + shown(number) + " already";
    const auto hold = numberIn(op, "hold", 0);
    if (auto problem = checkHold(animation, number, hold)) return problem;
    std::int32_t canvas = animation.frameCount() == 0 ? session.paint.currentCanvas() : -1;
    if (op.has("canvas")) canvas = session.canvases.at(op.text("canvas"));
    if (!session.paint.hasCanvas(canvas) && (canvas >= 0 || animation.frameCount() == 0))
        return "that canvas is not open";
    if (!animation.addFrame(number, canvas)) return "no canvas can be made for the frame";
    session.nameActive(op);
    std::size_t place = 0;
    if (hold == 0 || !animation.findFrame(number, place)) return std::nullopt;
    return setHold(animation, place, hold);
}

Problem runUseFrame(JournalSession& session, const Operation& op) {
    if (session.animation.frameCount() == 0) return "there are no frames yet";
    return problemUnless(session.animation.switchFrame(numberIn(op, "number", 0)),
                         "its canvas is not open");
}

Problem runDeleteFrame(JournalSession& session, const Operation& op) {
    std::uint32_t number = 0;
    std::size_t place = 0;
    if (auto problem = framed(session, op, number, place)) return problem;
    return problemUnless(session.animation.deleteFrame(number), "the frame can't be deleted");
}

Problem runDuplicateFrame(JournalSession& session, const Operation& op) {
    std::uint32_t number = 0;
    std::size_t place = 0;
    if (auto problem = framed(session, op, number, place)) return problem;
    if (!session.animation.canDuplicate(number))
        return "there is no room behind it up to " + shown(maxFrameNumber);
    return problemUnless(session.animation.duplicateFrame(number), "its canvas can't be copied");
}

Problem runMoveFrame(JournalSession& session, const Operation& op) {
    std::uint32_t number = 0;
    std::size_t place = 0;
    if (auto problem = framed(session, op, number, place)) return problem;
    return problemUnless(session.animation.reorderFrames(number, numberIn(op, "to", 0)),
                         "there is no room for it");
}

Problem runHoldFrame(JournalSession& session, const Operation& op) {
    std::uint32_t number = 0;
    std::size_t place = 0;
    if (auto problem = framed(session, op, number, place)) return problem;
    const std::uint32_t start = session.animation.frameAt(place)->frameNumber;
    const std::uint32_t hold = numberIn(op, "hold", 1);
    if (auto problem = checkHold(session.animation, start, hold)) return problem;
    return setHold(session.animation, place, hold);
}

Problem runExpectFrames(JournalSession& session, const Operation& op) {
    const AnimationManager& animation = session.animation;
    std::string starts;
    std::vector<float> found;
    for (std::size_t n = 0; n < animation.frameCount(); ++n) {
        found.push_back(static_cast<float>(animation.frameAt(n)->frameNumber));
        starts += " " + shown(animation.frameAt(n)->frameNumber);
    }
    if (op.has("starts") && op.numbers("starts") != found)
        return starts.empty() ? "there are no frames" : "frames start at" + starts;
    if (op.has("last") && numberIn(op, "last", 0) != animation.lastFrame())
        return "the timeline ends at " + shown(animation.lastFrame());
    if (op.has("shown") && numberIn(op, "shown", 0) != animation.currentFrame())
        return "number " + shown(animation.currentFrame()) + " is shown";
    return std::nullopt;
}

Problem messageOf(const std::optional<PictureFault>& fault) {
    return fault ? Problem(fault->message) : std::nullopt;
}

Problem runSaveFrames(JournalSession& session, const Operation& op) {
    return messageOf(
        exportFramePngs(session.animation, session.paint, session.pathOf(op.text("prefix")),
                        op.choice("each") == 1 ? FrameFiles::EachRun : FrameFiles::EachNumber));
}

Problem runSaveGif(JournalSession& session, const Operation& op) {
    FrameGif settings;
    settings.framesPerSecond = op.real("rate", settings.framesPerSecond);
    settings.plays = static_cast<std::uint16_t>(op.integer("plays", settings.plays));
    return messageOf(exportFrameGif(session.animation, session.paint,
                                    session.pathOf(op.text("file")), settings));
}

}  // namespace

std::vector<OpRow> frameOps() {
    const FieldRule number = integer("number", 1, highest), hold = integer("hold", 1, highest);
    const FieldRule as = newName("as", NameOf::Layer);
    std::vector<OpRow> rows{
        {{"frame",
          "A new frame from a number on, with a canvas of its own; it is shown.",
          {number, hold, nameOf("canvas", NameOf::Canvas), as}},
         runFrame},
        {{"use_frame", "Shows a number of the timeline.", {needed(number)}}, runUseFrame},
        {{"delete_frame",
          "Takes a number out: the frame that starts there, or one number of a hold.",
          {number}},
         runDeleteFrame},
        {{"duplicate_frame", "A copy of a frame behind it, which is shown.", {number}},
         runDuplicateFrame},
        {{"move_frame",
          "A frame starts at another number.",
          {number, needed(integer("to", 1, highest))}},
         runMoveFrame},
        {{"hold_frame", "For how many numbers a frame shows.", {number, needed(hold)}},
         runHoldFrame},
        {{"expect_frames",
          "Where frames start, where the timeline ends, and which number is shown.",
          {numberList("starts", 1, highest), integer("last", 0, highest),
           integer("shown", 1, highest)}},
         runExpectFrames,
         false},
        {{"save_frames",
          "A PNG for each number of the timeline, or for each frame.",
          {needed(file("prefix")), choice("each", {"number", "frame"})}},
         runSaveFrames},
        {{"save_gif",
          "The timeline as one animated GIF.",
          {needed(file("file")), tools::number("rate", 0.01, 100.0), integer("plays", 0, 65535)}},
         runSaveGif},
    };
    for (OpRow& row : rows) row.rules.since = 2;
    return rows;
}

}  // namespace brushwork::tools
