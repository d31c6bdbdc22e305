// znUtil::Progress: a tree of progress reporters.
//
//     Progress whole;                       // the root: a fraction of 0 to 1
//     whole.onFraction([](double fraction) { draw(fraction); });
//     load(Progress(whole, 0.0, 0.5));      // what it reports moves the root from 0 to 0.5
//     blur(Progress(whole, 0.5, 1.0));
//
// A routine reports 0 to 1 and never knows how much of the whole it is. Each level maps into the
// range of its parent, however deep the tree is.
#pragma once

#include <cstdint>
#include <functional>

#include "brushwork/c_string.h"
#include "brushwork/export.h"
#include "brushwork/ref.h"

namespace brushwork::znUtil {

// A handle; copies share the reporter, and a sub-reporter keeps its parents alive. The tree is for
// one thread at a time. Message, state and cancellation belong to the root, and every reporter of
// the tree asks and sets them there.
class BRUSHWORK_API Progress {
  public:
    // A root.
    Progress();
    // A reporter for the part `start` to `end` of its parent.
    Progress(const Progress& parent, double start, double end);
    Progress(const Progress& other);
    ~Progress();
    Progress& operator=(const Progress& other);

    // How far this reporter's own work is, 0 to 1; nothing is clamped.
    void setFraction(double value);
    // Of a sub-reporter: where the root stands within this one's range, between 0 and 1.
    [[nodiscard]] double fraction() const;
    // What is being done, for a user.
    [[nodiscard]] znString::CString message() const;
    void setMessage(const znString::CString& message);
    // A number that the owner of the tree gives a meaning; 0 at first.
    [[nodiscard]] std::int32_t state() const;
    void setState(std::int32_t state);
    [[nodiscard]] bool isCancelled() const;
    void cancel();
    // Takes a cancellation back.
    void clearCancel();
    // A sub-reporter goes to 1 unless one of its parents has finished; a root reports once more
    // where it stands.
    void finish();
    [[nodiscard]] bool isFinished() const;

    // What the root calls after a change; on a sub-reporter they set the root's. A callback must
    // not replace itself.
    void onFraction(std::function<void(double fraction)> callback);
    void onMessage(std::function<void(const znString::CString& message)> callback);
    void onState(std::function<void(std::int32_t state)> callback);
    void onCancel(std::function<void(bool cancelled)> callback);

  private:
    class Impl;
    class RootProgress;
    class SubProgress;
    Ref<Impl> impl_;
};

}  // namespace brushwork::znUtil
