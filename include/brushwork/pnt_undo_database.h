// PntUndoDatabase: the list of undo records, oldest first.
//
//     PntUndoDatabase undo;
//     setUndoDatabase(&undo);       // before the first edit
//     ... edit ...
//     undo.find(handle)->undo(nullptr);
//
// A host may derive from it, to hear of records as they are filed. No limit and no levels: those
// are the host's. Host's thread.
#pragma once

#include <cstddef>
#include <cstdint>
#include <list>

#include "brushwork/export.h"
#include "brushwork/pnt_undo_oper.h"
#include "brushwork/ref.h"

namespace brushwork {

class BRUSHWORK_API PntUndoDatabase {
  public:
    static constexpr std::uint32_t mostRecords = 0x15555554;

    PntUndoDatabase();
    PntUndoDatabase(const PntUndoDatabase&) = delete;
    PntUndoDatabase& operator=(const PntUndoDatabase&) = delete;

    // Slots, in this order.
    // Drops all records without archiving them.
    virtual ~PntUndoDatabase();
    // Appends a record; null stands as an empty entry. Throws std::length_error("list<T> too
    // long") when the list is full.
    virtual bool add(PntUndoOper* record);
    // Archives all records from the oldest on, and drops them.
    virtual bool clear();
    // objectSize of the record, or 0.
    [[nodiscard]] virtual std::size_t sizeOf(std::int32_t handle) const;

    // Null for an unknown handle. Time grows with the list.
    [[nodiscard]] Ref<PntUndoOper> find(std::int32_t handle) const;
    [[nodiscard]] bool hasKind(std::int32_t handle, const char* name) const;
    void dump() const;
    // A clear at the next commitClear.
    void requestClear() { clearPending_ = true; }
    void commitClear();
    [[nodiscard]] std::uint32_t count() const {
        return static_cast<std::uint32_t>(records_.size());
    }
    [[nodiscard]] const std::list<Ref<PntUndoOper>>& records() const { return records_; }
    // Drops one record as it is: without archiving it.
    bool drop(std::int32_t handle);
    // Archives the oldest record and drops it. False for an empty list.
    bool retireOldest();

  private:
    std::list<Ref<PntUndoOper>> records_;
    bool clearPending_ = false;
};

// The one that the engine files into: the host's. Null: no record is made.
[[nodiscard]] BRUSHWORK_API PntUndoDatabase* undoDatabase();
BRUSHWORK_API void setUndoDatabase(PntUndoDatabase* database);

}  // namespace brushwork
