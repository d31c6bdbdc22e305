// znUtil::AsyncTaskProgress: how far a task is that runs beside its starter.
//
// A plain value; whoever shares one between threads guards it.
#pragma once

#include <cstdint>

namespace brushwork::znUtil {

class AsyncTaskProgress {
  public:
    enum State : std::int32_t { Running = 2, Idle = 3 };

    // What part of the whole work the task has: its first and last step, and how many there are.
    struct Range {
        std::int32_t first = 0;
        std::int32_t last = 0;
        std::int32_t total = 0;
        friend bool operator==(const Range&, const Range&) = default;
    };

    AsyncTaskProgress() = default;
    AsyncTaskProgress(const AsyncTaskProgress&) = default;
    AsyncTaskProgress& operator=(const AsyncTaskProgress&) = default;
    virtual ~AsyncTaskProgress();

    virtual void setFraction(float fraction);  // notes a change
    [[nodiscard]] virtual bool isRunning() const;
    virtual void start();  // running, no change noted
    virtual void setState(std::int32_t state);
    [[nodiscard]] virtual std::int32_t state() const;
    virtual void assign(const Range& range);
    [[nodiscard]] virtual float fraction() const;

    [[nodiscard]] const Range& range() const { return range_; }
    // Whether the fraction was set since the start.
    [[nodiscard]] bool changed() const { return changed_; }
    [[nodiscard]] bool done() const { return done_; }
    void setDone(bool done) { done_ = done; }

  private:
    Range range_;
    float fraction_ = 0.0F;
    bool changed_ = false;
    bool done_ = true;
    std::int32_t state_ = Idle;
};

}  // namespace brushwork::znUtil
