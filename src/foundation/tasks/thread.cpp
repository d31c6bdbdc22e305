#include "foundation/tasks/thread.h"

#include <exception>
#include <system_error>

#include "brushwork/reference_count.h"
#include "foundation/services/log.h"

namespace brushwork::znThread {

class Thread::Impl final : public zn::ReferenceCount {
  public:
    Impl() : wrapped_(std::this_thread::get_id()) {}
    explicit Impl(std::function<void()> callable) : callable_(std::move(callable)) {}

    bool start() {
        if (started_ || !callable_) return false;
        try {
            thread_ = std::thread([self = Ref<Impl>(this)] { self->run(); });
        } catch (const std::system_error&) {
            return false;
        }
        started_ = true;
        return true;
    }
    bool join() {
        if (!thread_.joinable() || id() == std::this_thread::get_id()) return false;
        thread_.join();
        return true;
    }
    void detach() {
        if (thread_.joinable()) thread_.detach();
    }
    [[nodiscard]] std::thread::id id() const noexcept {
        return wrapped_ == std::thread::id() ? thread_.get_id() : wrapped_;
    }

  private:
    // The callable goes with the thread, not with the handle.
    void run() noexcept {
        const auto callable = std::exchange(callable_, nullptr);
        try {
            callable();
        } catch (const std::exception& error) {
            log("a thread ended early: %s\n", error.what());
        } catch (...) {
            log("a thread ended early\n");
        }
    }

    std::function<void()> callable_;  // of the new thread, once started
    std::thread thread_;              // of the handle
    std::thread::id wrapped_;
    bool started_ = false;
};

Thread::Thread() : impl_(makeRef<Impl>()) {}

Thread::Thread(std::function<void()> callable) : impl_(makeRef<Impl>(std::move(callable))) {}

Thread::~Thread() {
    if (!detached_) join();
    impl_->detach();
}

bool Thread::start() {
    return impl_->start();
}

bool Thread::join() {
    return impl_->join();
}

std::thread::id Thread::id() const noexcept {
    return impl_->id();
}

}  // namespace brushwork::znThread
