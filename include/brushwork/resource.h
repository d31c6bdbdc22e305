// Resource: the counted base of document objects: layers, shapes, brush tips, profiles.
#pragma once

#include <cstdint>

#include "brushwork/export.h"

namespace brushwork {

// An object starts with no holder; Ref<T> counts. The last holder's leave destroys the object, or,
// if it leaves by unrefDeferred while deferred release is on, puts it on the deferred list, where
// it stays whole until the list is flushed.
//
// Counts, the list and the switch belong to the document's thread.
class BRUSHWORK_API Resource {
  public:
    Resource(const Resource&) = delete;
    Resource& operator=(const Resource&) = delete;

  protected:
    // Slots, in this order in every class.
    virtual ~Resource();

  public:
    virtual void ref();
    // With a count of 0, or when it comes to 0: aboutToRelease, then destruction.
    virtual void unref();
    [[nodiscard]] virtual std::uint32_t refCount() const;
    // Like unref, but the object may be deferred. An object that finds a holder again while it
    // waits is left to that holder.
    virtual void unrefDeferred();

  protected:
    // Runs once the last holder has left, while the object is still whole.
    virtual void aboutToRelease();

  public:
    // What code calls that wants the derived class's counting.
    virtual void refForward();
    virtual void unrefForward();
    // 1, 2, 3 ... in the order of construction; never two alike in a process.
    [[nodiscard]] virtual std::uint32_t objectId() const;

    // For Ref<T>.
    void addRef() { ref(); }
    void release() { unref(); }

    // Off (0) at first. A change flushes the list. Answers the old value.
    static std::int32_t setDeferredRelease(std::int32_t value);
    [[nodiscard]] static std::int32_t deferredRelease();
    // Destroys what waits on the list, in its order. What those objects release in turn is
    // destroyed at once.
    static void flushDeferred();

  protected:
    Resource();

  private:
    [[nodiscard]] bool dropOne();

    std::uint32_t count_ = 0;
    std::uint32_t objectId_;
};

}  // namespace brushwork
