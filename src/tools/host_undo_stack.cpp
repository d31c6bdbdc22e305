#include "tools/host_undo_stack.h"

#include <utility>

namespace brushwork::tools {

bool HostUndoStack::add(PntUndoOper* record) {
    if (!record) return PntUndoDatabase::add(record);
    forgetUndone();
    if (depth_ == 0 || fresh_) levels_.push_back({depth_ > 0 ? openTitle_ : std::string(), {}});
    fresh_ = false;
    done_ = levels_.size();
    levels_.back().handles.push_back(record->undoHandle());
    const bool added = PntUndoDatabase::add(record);
    if (depth_ == 0) retire();
    return added;
}

bool HostUndoStack::clear() {
    forgetUndone();
    levels_.clear();
    done_ = 0;
    fresh_ = depth_ > 0;
    return PntUndoDatabase::clear();
}

void HostUndoStack::beginLevel(std::string title) {
    if (depth_++ > 0) return;
    openTitle_ = std::move(title);
    fresh_ = true;
}

void HostUndoStack::endLevel() {
    if (depth_ == 0 || --depth_ > 0) return;
    fresh_ = false;
    retire();
}

HostUndoStack::Step HostUndoStack::undo() {
    Step step;
    if (done_ == 0) return step;
    const Level& level = levels_[--done_];
    for (auto handle = level.handles.rbegin(); handle != level.handles.rend(); ++handle)
        if (const Ref<PntUndoOper> record = find(*handle)) record->undo(&step.redraw);
    fresh_ = depth_ > 0;
    step.done = true;
    return step;
}

HostUndoStack::Step HostUndoStack::redo() {
    Step step;
    if (done_ == levels_.size()) return step;
    const Level& level = levels_[done_++];
    for (const std::int32_t handle : level.handles)
        if (const Ref<PntUndoOper> record = find(handle)) record->redo(&step.redraw);
    fresh_ = depth_ > 0;
    step.done = true;
    return step;
}

std::string HostUndoStack::title() const {
    return done_ > 0 ? levels_[done_ - 1].title : std::string();
}

void HostUndoStack::setLimit(std::size_t levels) {
    limit_ = levels;
    if (depth_ == 0) retire();
}

// The newest first, so that what a record shares with the one before it goes last.
void HostUndoStack::forgetUndone() {
    while (levels_.size() > done_) {
        const std::vector<std::int32_t> handles = std::move(levels_.back().handles);
        levels_.pop_back();
        for (auto handle = handles.rbegin(); handle != handles.rend(); ++handle) drop(*handle);
    }
}

// Archived records pass what they hold to their successors, which must not be undone ones.
void HostUndoStack::retire() {
    if (limit_ == 0 || done_ <= limit_ || redoLevels() > 0) return;
    while (done_ > limit_) {
        for (std::size_t n = 0; n < levels_.front().handles.size(); ++n) retireOldest();
        levels_.erase(levels_.begin());
        --done_;
    }
}

}  // namespace brushwork::tools
