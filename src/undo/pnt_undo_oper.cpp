#include "brushwork/pnt_undo_oper.h"

namespace brushwork {
namespace {

std::int32_t operSequence = 0;
std::int32_t nextUndoHandle = 0;

}  // namespace

PntUndoOper::PntUndoOper(const char* primaryName, bool flagA, bool flagB)
    : IdList(primaryName),
      sequence_(operSequence++),
      flagA_(flagA),
      flagB_(flagB),
      undoHandle_(nextUndoHandle++) {
    addKind("SidOper");
}

PntUndoOper::~PntUndoOper() = default;

std::size_t PntUndoOper::objectSize() const {
    return sizeof(PntUndoOper) + extraSize();
}

std::size_t PntUndoOper::extraSize() const {
    return 0;
}

void PntUndoOper::archive(PntUndoDatabase&) {}

void PntUndoOper::dump() const {}

Ref<PntUndoOper> PntUndoOper::match(const PntUndoOper&) {
    return Ref<PntUndoOper>(this);
}

Ref<PntUndoOper> PntUndoOper::matchKind(PntUndoOper& other) {
    for (const std::string& name : other.kindNames()) {
        if (name != primaryName()) continue;
        if (Ref<PntUndoOper> found = other.match(*this)) return found;
    }
    return {};
}

}  // namespace brushwork
