#include "brushwork/pnt_undo_database.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

#include "foundation/services/log.h"

namespace brushwork {
namespace {

PntUndoDatabase* installed = nullptr;

}  // namespace

PntUndoDatabase::PntUndoDatabase() {
    PntUndoDatabase::clear();
}

PntUndoDatabase::~PntUndoDatabase() {
    if (installed == this) installed = nullptr;
}

bool PntUndoDatabase::add(PntUndoOper* record) {
    if (records_.size() >= mostRecords) throw std::length_error("list<T> too long");
    records_.emplace_back(record);
    return true;
}

// The list stays whole meanwhile, so that each record sees those after it.
bool PntUndoDatabase::clear() {
    for (const Ref<PntUndoOper>& record : records_)
        if (record) record->archive(*this);
    records_.clear();
    return true;
}

std::size_t PntUndoDatabase::sizeOf(std::int32_t handle) const {
    const Ref<PntUndoOper> record = find(handle);
    return record ? record->objectSize() : 0;
}

Ref<PntUndoOper> PntUndoDatabase::find(std::int32_t handle) const {
    const auto found = std::find_if(records_.begin(), records_.end(), [&](const auto& record) {
        return record && record->undoHandle() == handle;
    });
    return found == records_.end() ? Ref<PntUndoOper>() : *found;
}

bool PntUndoDatabase::hasKind(std::int32_t handle, const char* name) const {
    const Ref<PntUndoOper> record = find(handle);
    return record && record->isKind(name);
}

void PntUndoDatabase::dump() const {
    int place = 0;
    for (const Ref<PntUndoOper>& record : records_) {
        log("Iter:%d\n", place++);
        if (record) record->dump();
    }
}

void PntUndoDatabase::commitClear() {
    if (std::exchange(clearPending_, false)) clear();
}

bool PntUndoDatabase::drop(std::int32_t handle) {
    return records_.remove_if(
               [&](const auto& record) { return record && record->undoHandle() == handle; }) != 0;
}

bool PntUndoDatabase::retireOldest() {
    if (records_.empty()) return false;
    const Ref<PntUndoOper> oldest = records_.front();
    if (oldest) oldest->archive(*this);
    records_.pop_front();
    return true;
}

PntUndoDatabase* undoDatabase() {
    return installed;
}

void setUndoDatabase(PntUndoDatabase* database) {
    installed = database;
}

}  // namespace brushwork
