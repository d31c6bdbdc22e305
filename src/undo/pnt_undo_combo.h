// PntUndoCombo: several records that are run as one.
#pragma once

#include <list>

#include "brushwork/pnt_undo_oper.h"

namespace brushwork {

class PntUndoCombo final : public PntUndoOper {
  public:
    static constexpr std::uint32_t mostRecords = 0x15555554;

    // In the order in which they are undone; each may be null.
    PntUndoCombo(PntUndoOper* first, PntUndoOper* second, PntUndoOper* third, PntUndoOper* fourth,
                 PntUndoOper* fifth, bool flagA, bool flagB, const char* primaryName);

  protected:
    ~PntUndoCombo() override;

  public:
    // Null is ignored. Combinations don't nest: one is dropped with what it holds. Throws
    // std::length_error("list<T> too long") when there are too many.
    void addChild(PntUndoOper* record);

    void undo(bool* deferRedraw) override;
    void redo(bool* deferRedraw) override;  // in the reverse order
    [[nodiscard]] std::size_t objectSize() const override;
    [[nodiscard]] std::size_t extraSize() const override;
    void archive(PntUndoDatabase& database) override;
    // By its first child that the other matches.
    [[nodiscard]] Ref<PntUndoOper> match(const PntUndoOper& other) override;

    [[nodiscard]] const std::list<Ref<PntUndoOper>>& children() const { return children_; }

  private:
    std::list<Ref<PntUndoOper>> children_;
};

}  // namespace brushwork
