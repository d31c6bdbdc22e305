#include "brushwork/progress.h"

#include <algorithm>
#include <utility>

#include "brushwork/reference_count.h"

namespace brushwork::znUtil {

using znString::CString;

class Progress::Impl : public zn::ReferenceCount {
  public:
    Impl(Ref<Impl> parent, RootProgress& root, double start, double end)
        : parent_(std::move(parent)), root_(&root), start_(start), end_(end) {}

    virtual void setFraction(double value) = 0;
    [[nodiscard]] virtual double fraction() const = 0;
    [[nodiscard]] virtual CString message() const = 0;
    virtual void setMessage(const CString& message) = 0;
    [[nodiscard]] virtual std::int32_t state() const = 0;
    virtual void setState(std::int32_t state) = 0;
    [[nodiscard]] virtual bool isCancelled() const = 0;
    virtual void cancel() = 0;
    virtual void clearCancel() = 0;
    virtual void finish() = 0;

    [[nodiscard]] RootProgress& root() const { return *root_; }
    [[nodiscard]] bool isFinished() const { return finished_; }

  protected:
    [[nodiscard]] bool parentFinished() const {
        for (const Impl* one = parent_.get(); one; one = one->parent_.get())
            if (one->finished_) return true;
        return false;
    }
    // A value of this reporter in the root's scale.
    [[nodiscard]] double inRoot(double value) const {
        for (const Impl* one = this; one->parent_; one = one->parent_.get())
            value = one->start_ + value * (one->end_ - one->start_);
        return value;
    }
    void markFinished() { finished_ = true; }

  private:
    Ref<Impl> parent_;    // null for a root
    RootProgress* root_;  // kept alive by the chain of parents
    double start_, end_;  // the range within the parent
    bool finished_ = false;
};

class Progress::RootProgress final : public Progress::Impl {
  public:
    RootProgress() : Impl(nullptr, *this, 0.0, 1.0) {}

    void setFraction(double value) override {
        fraction_ = value;
        if (fractionChanged) fractionChanged(value);
    }
    double fraction() const override { return fraction_; }
    CString message() const override { return message_; }
    void setMessage(const CString& message) override {
        message_ = message;
        if (messageChanged) messageChanged(message_);
    }
    std::int32_t state() const override { return state_; }
    void setState(std::int32_t state) override {
        state_ = state;
        if (stateChanged) stateChanged(state);
    }
    bool isCancelled() const override { return cancelled_; }
    void cancel() override { setCancelled(true); }
    void clearCancel() override { setCancelled(false); }
    void finish() override {
        if (fractionChanged) fractionChanged(fraction_);
        markFinished();
    }

    std::function<void(double)> fractionChanged;
    std::function<void(const CString&)> messageChanged;
    std::function<void(std::int32_t)> stateChanged;
    std::function<void(bool)> cancelChanged;

  private:
    void setCancelled(bool cancelled) {
        if (std::exchange(cancelled_, cancelled) != cancelled && cancelChanged)
            cancelChanged(cancelled);
    }

    double fraction_ = 0.0;
    bool cancelled_ = false;
    CString message_;
    std::int32_t state_ = 0;
};

class Progress::SubProgress final : public Progress::Impl {
  public:
    SubProgress(const Ref<Impl>& parent, double start, double end)
        : Impl(parent, parent->root(), start, end) {}

    void setFraction(double value) override { root().setFraction(inRoot(value)); }
    double fraction() const override {
        const double begin = inRoot(0.0), end = inRoot(1.0);
        if (begin == end) return isFinished() ? 1.0 : 0.0;
        return std::clamp((root().fraction() - begin) / (end - begin), 0.0, 1.0);
    }
    CString message() const override { return root().message(); }
    void setMessage(const CString& message) override { root().setMessage(message); }
    std::int32_t state() const override { return root().state(); }
    void setState(std::int32_t state) override { root().setState(state); }
    bool isCancelled() const override { return root().isCancelled(); }
    void cancel() override { root().cancel(); }
    void clearCancel() override { root().clearCancel(); }
    void finish() override {
        if (!parentFinished()) setFraction(1.0);
        markFinished();
    }
};

Progress::Progress() : impl_(makeRef<RootProgress>()) {}
Progress::Progress(const Progress& parent, double start, double end)
    : impl_(makeRef<SubProgress>(parent.impl_, start, end)) {}
Progress::Progress(const Progress& other) = default;
Progress::~Progress() = default;
Progress& Progress::operator=(const Progress& other) = default;

void Progress::setFraction(double value) {
    impl_->setFraction(value);
}

double Progress::fraction() const {
    return impl_->fraction();
}

CString Progress::message() const {
    return impl_->message();
}

void Progress::setMessage(const CString& message) {
    impl_->setMessage(message);
}

std::int32_t Progress::state() const {
    return impl_->state();
}

void Progress::setState(std::int32_t state) {
    impl_->setState(state);
}

bool Progress::isCancelled() const {
    return impl_->isCancelled();
}

void Progress::cancel() {
    impl_->cancel();
}

void Progress::clearCancel() {
    impl_->clearCancel();
}

void Progress::finish() {
    impl_->finish();
}

bool Progress::isFinished() const {
    return impl_->isFinished();
}

void Progress::onFraction(std::function<void(double)> callback) {
    impl_->root().fractionChanged = std::move(callback);
}

void Progress::onMessage(std::function<void(const CString&)> callback) {
    impl_->root().messageChanged = std::move(callback);
}

void Progress::onState(std::function<void(std::int32_t)> callback) {
    impl_->root().stateChanged = std::move(callback);
}

void Progress::onCancel(std::function<void(bool)> callback) {
    impl_->root().cancelChanged = std::move(callback);
}

}  // namespace brushwork::znUtil
