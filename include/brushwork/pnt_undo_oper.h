// PntUndoOper: one step that can be taken back and done again.
//
//     if (const Ref<PntUndoOper> record = undoDatabase()->find(handle)) record->undo(nullptr);
//
// The engine files records into the host's PntUndoDatabase as it edits; the host runs them, newest
// first for undo, in its own order of levels. Host's thread.
#pragma once

#include <cstddef>
#include <cstdint>

#include "brushwork/export.h"
#include "brushwork/id_list.h"
#include "brushwork/ref.h"
#include "brushwork/reference_count.h"

namespace brushwork {

class PntUndoDatabase;

class BRUSHWORK_API PntUndoOper : public zn::ReferenceCount, public IdList {
  protected:
    // Slots, in this order in every class.
    ~PntUndoOper() override;

  public:
    // With a flag: it is set instead of redrawing, so that who runs several records redraws once.
    virtual void undo(bool* deferRedraw) = 0;
    virtual void redo(bool* deferRedraw) = 0;
    // Bytes of the objects that the record holds, without the pages of their images.
    [[nodiscard]] virtual std::size_t objectSize() const;
    [[nodiscard]] virtual std::size_t extraSize() const;
    // The record will never be undone: what it alone holds goes into the next one of its kind.
    virtual void archive(PntUndoDatabase& database);
    virtual void dump() const;
    // This record if `other` is about the same thing; else null.
    [[nodiscard]] virtual Ref<PntUndoOper> match(const PntUndoOper& other);
    // The first match by `other` of this record, over those of its kinds that are this record's
    // primary name.
    [[nodiscard]] virtual Ref<PntUndoOper> matchKind(PntUndoOper& other);

    [[nodiscard]] std::int32_t sequence() const { return sequence_; }
    // What the host knows the record by. Rises with every record made, filed or not.
    [[nodiscard]] std::int32_t undoHandle() const { return undoHandle_; }
    [[nodiscard]] bool flagA() const { return flagA_; }
    [[nodiscard]] bool flagB() const { return flagB_; }

  protected:
    explicit PntUndoOper(const char* primaryName, bool flagA = false, bool flagB = false);

  private:
    std::int32_t sequence_;
    bool flagA_, flagB_;
    std::int32_t undoHandle_;
};

}  // namespace brushwork
