// AgObjectRef: how the rest of the engine holds a kernel object.
//
//     AgCurveRef guide = AgCurveRef::of(std::move(curve));   // an AgCurvePtr
//     AgCurveRef same = guide;                               // one curve, two holders
//     if (guide) host.curveLength(guide.get());
//
// With ag_shared it is the only door into the kernel for other layers of the engine.
#pragma once

#include <memory>
#include <type_traits>
#include <utility>

#include "brushwork/ref.h"
#include "geometry/ag_shared.h"

namespace brushwork {

template <class Object>
struct AgClassOf;
template <>
struct AgClassOf<ag_curve> {
    static const AG_CLASS& record() { return agCurveClass; }
};
template <>
struct AgClassOf<ag_spline> {
    static const AG_CLASS& record() { return agSplineClass; }
};

// A holder that knows the class of its object: null for an object of any other class.
template <class Object>
class AGSharedHandle {
  public:
    AGSharedHandle() = default;
    explicit AGSharedHandle(Ref<znAG::AGShared> shared) {
        if (shared && agIsOfClass(shared->object(), AgClassOf<Object>::record()))
            shared_ = std::move(shared);
    }

    [[nodiscard]] Object* object() const {
        return shared_ ? static_cast<Object*>(shared_->object()) : nullptr;
    }
    [[nodiscard]] const Ref<znAG::AGShared>& shared() const { return shared_; }

  private:
    Ref<znAG::AGShared> shared_;
};

// Reads like a pointer to the object; copies share it.
template <class Pointer, class Handle>
class AgObjectRef {
  public:
    using Object = std::remove_pointer_t<Pointer>;

    AgObjectRef() = default;
    explicit AgObjectRef(Handle handle) : handle_(std::move(handle)) {}
    explicit AgObjectRef(Ref<znAG::AGShared> shared) : handle_(std::move(shared)) {}
    // Takes over what a builder of the kernel made; null gives an empty reference.
    template <class Free>
    [[nodiscard]] static AgObjectRef of(std::unique_ptr<Object, Free> object) {
        if (!object) return {};
        return AgObjectRef(makeRef<znAG::AGShared>(std::move(object)));
    }

    [[nodiscard]] Pointer get() const { return handle_.object(); }
    Object& operator*() const { return *get(); }
    Pointer operator->() const { return get(); }
    explicit operator bool() const { return get() != nullptr; }
    [[nodiscard]] const Handle& handle() const { return handle_; }
    void reset() { handle_ = Handle(); }

    // The same object, not an equal one.
    friend bool operator==(const AgObjectRef& a, const AgObjectRef& b) {
        return a.get() == b.get();
    }

  private:
    Handle handle_;
};

using AgCurveRef = AgObjectRef<ag_curve*, AGSharedHandle<ag_curve>>;
using AgSplineRef = AgObjectRef<ag_spline*, AGSharedHandle<ag_spline>>;

}  // namespace brushwork
