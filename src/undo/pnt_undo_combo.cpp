#include "undo/pnt_undo_combo.h"

#include <stdexcept>

namespace brushwork {
namespace {

constexpr const char* kind = "SidCombo";

}  // namespace

PntUndoCombo::PntUndoCombo(PntUndoOper* first, PntUndoOper* second, PntUndoOper* third,
                           PntUndoOper* fourth, PntUndoOper* fifth, bool flagA, bool flagB,
                           const char* primaryName)
    : PntUndoOper(primaryName, flagA, flagB) {
    addKind(kind);
    for (PntUndoOper* record : {first, second, third, fourth, fifth}) addChild(record);
}

PntUndoCombo::~PntUndoCombo() = default;

void PntUndoCombo::addChild(PntUndoOper* record) {
    const Ref<PntUndoOper> held(record);
    if (!record || record->primaryName() == kind) return;
    if (children_.size() >= mostRecords) throw std::length_error("list<T> too long");
    addKind(record->primaryName().c_str());
    children_.push_back(held);
}

void PntUndoCombo::undo(bool* deferRedraw) {
    for (const Ref<PntUndoOper>& child : children_) child->undo(deferRedraw);
}

void PntUndoCombo::redo(bool* deferRedraw) {
    for (auto child = children_.rbegin(); child != children_.rend(); ++child)
        (*child)->redo(deferRedraw);
}

std::size_t PntUndoCombo::objectSize() const {
    return sizeof(PntUndoCombo) + extraSize();
}

std::size_t PntUndoCombo::extraSize() const {
    std::size_t bytes = 0;
    for (const Ref<PntUndoOper>& child : children_) bytes += child->objectSize();
    return bytes;
}

void PntUndoCombo::archive(PntUndoDatabase& database) {
    for (const Ref<PntUndoOper>& child : children_) child->archive(database);
}

// The other asks through its kinds; the child that it means answers in this record's place.
Ref<PntUndoOper> PntUndoCombo::match(const PntUndoOper& other) {
    auto& asking = const_cast<PntUndoOper&>(other);
    for (const Ref<PntUndoOper>& child : children_)
        if (asking.matchKind(*child)) return child->match(other);
    return {};
}

}  // namespace brushwork
