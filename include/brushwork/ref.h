// Ref<T>: the one owning pointer over every counted base.
#pragma once

#include <concepts>
#include <cstddef>
#include <utility>

namespace brushwork {

// Holds one reference on its object, or none. T offers addRef() and release(), const or not; the
// release that drops the last reference destroys the object. A raw pointer beside it borrows.
template <class T>
class Ref {
  public:
    using element_type = T;

    constexpr Ref() noexcept = default;
    constexpr Ref(std::nullptr_t) noexcept {}
    // Takes a reference of its own: `Ref<Thing> thing(new Thing)` is the way to make one.
    explicit Ref(T* object) noexcept : object_(object) {
        if (object_) object_->addRef();
    }
    Ref(const Ref& other) noexcept : Ref(other.object_) {}
    Ref(Ref&& other) noexcept : object_(std::exchange(other.object_, nullptr)) {}
    template <class U>
    requires std::convertible_to<U*, T*> Ref(const Ref<U>& other)
    noexcept : Ref(static_cast<T*>(other.get())) {}
    template <class U>
    requires std::convertible_to<U*, T*> Ref(Ref<U>&& other)
    noexcept : object_(other.detach()) {}
    ~Ref() {
        if (object_) object_->release();
    }
    Ref& operator=(Ref other) noexcept {
        swap(other);
        return *this;
    }

    void swap(Ref& other) noexcept { std::swap(object_, other.object_); }
    void reset() noexcept { Ref().swap(*this); }
    // Gives the held reference to the caller, who must release it.
    [[nodiscard]] T* detach() noexcept { return std::exchange(object_, nullptr); }

    [[nodiscard]] T* get() const noexcept { return object_; }
    T& operator*() const noexcept { return *object_; }
    T* operator->() const noexcept { return object_; }
    explicit operator bool() const noexcept { return object_ != nullptr; }

    friend bool operator==(const Ref& a, const Ref& b) noexcept { return a.object_ == b.object_; }
    friend bool operator==(const Ref& a, const T* b) noexcept { return a.object_ == b; }

  private:
    T* object_ = nullptr;
};

template <class T, class... Args>
[[nodiscard]] Ref<T> makeRef(Args&&... args) {
    return Ref<T>(new T(std::forward<Args>(args)...));
}

}  // namespace brushwork
