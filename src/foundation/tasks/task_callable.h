// npc::TaskCallable: what a task calls, once.
//
// A callable of up to `room` bytes is built in place; a larger one is held on the heap. It is never
// copied nor moved again, so it need not be able to.
#pragma once

#include <cstddef>
#include <memory>
#include <new>
#include <type_traits>
#include <utility>

namespace brushwork::npc {

class TaskCallable {
  public:
    static constexpr std::size_t room = 8 * sizeof(void*);
    // Not that of std::max_align_t: for 32-bit Windows it depends on the headers included before,
    // and files would disagree about the size of a task.
    static constexpr std::size_t alignment = 2 * sizeof(void*);

    template <class F>
    static constexpr bool fits = sizeof(F) <= room && alignof(F) <= alignment;

    template <class F>
    requires(!std::is_same_v<std::remove_cvref_t<F>, TaskCallable>) explicit TaskCallable(
        F&& call) {
        using Call = std::decay_t<F>;
        static_assert(std::is_invocable_v<Call&>, "a task is called without arguments");
        if constexpr (fits<Call>) {
            ::new (static_cast<void*>(bytes_)) Call(std::forward<F>(call));
            use_ = &useAs<Call>;
        } else {
            using Held = HeapCall<Call>;
            ::new (static_cast<void*>(bytes_)) Held{std::make_unique<Call>(std::forward<F>(call))};
            use_ = &useAs<Held>;
        }
    }
    TaskCallable(const TaskCallable&) = delete;
    TaskCallable& operator=(const TaskCallable&) = delete;
    ~TaskCallable() { destroy(); }

    // Only before destroy().
    void operator()() { use_(bytes_, Use::Invoke); }
    // Gives back what the callable holds; a second time does nothing.
    void destroy() noexcept {
        if (const auto last = std::exchange(use_, nullptr)) last(bytes_, Use::Destroy);
    }

  private:
    template <class F>
    struct HeapCall {
        std::unique_ptr<F> call;
        void operator()() { static_cast<void>((*call)()); }
    };

    enum class Use { Invoke, Destroy };

    template <class F>
    static void useAs(void* bytes, Use what) {
        F& call = *std::launder(static_cast<F*>(bytes));
        if (what == Use::Invoke)
            static_cast<void>(call());
        else
            call.~F();
    }

    alignas(alignment) std::byte bytes_[room];
    void (*use_)(void* bytes, Use what) = nullptr;
};

}  // namespace brushwork::npc
