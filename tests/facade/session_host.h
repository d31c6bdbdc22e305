// A host for facade sessions: timers that ring when told, documents that are valid while their
// canvas is open, and what was said to a person.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "brushwork/host_call_table.h"
#include "brushwork/paint_manager.h"
#include "brushwork/pnt_undo_database.h"
#include "foundation/host/polyline_curves.h"

namespace brushwork::test {

class SessionHost {
  public:
    SessionHost() {
        current_ = this;
        HostCallTable& table = hostCallTable();
        servePolylineCurves(table);
        table.startTimer = [](std::int32_t wait, HostTimerCallback callback, void* argument) {
            current_->timers[++current_->lastTimer_] = {wait, callback, argument};
            return current_->lastTimer_;
        };
        table.stopTimer = [](HostTimerId id) { current_->timers.erase(id); };
        table.documentValid = [](std::int32_t canvas) {
            return current_->manager && current_->manager->hasCanvas(canvas);
        };
        table.showMessage = [](const char* text) { current_->messages.emplace_back(text); };
        table.reportError = [](std::int32_t a, std::int32_t b, std::int32_t style, char*,
                               const char* text) {
            current_->errors.push_back({a, b, style, text});
            return std::int32_t{0};
        };
        table.debugLevel = [] { return current_->debugLevel; };
        table.shapeCurve = [](HostShape shape, std::int32_t index) -> HostCurve {
            return index == 0 ? shape : nullptr;
        };
        setUndoDatabase(&undo);
    }
    SessionHost(const SessionHost&) = delete;
    SessionHost& operator=(const SessionHost&) = delete;
    ~SessionHost() {
        clearHostCallTable();
        setUndoDatabase(nullptr);
        current_ = nullptr;
    }

    // Rings one pending timer, if there is any.
    void ring() {
        if (timers.empty()) return;
        const auto first = timers.begin();
        const Timer timer = first->second;
        timers.erase(first);
        timer.callback(timer.argument);
    }
    [[nodiscard]] std::vector<Ref<PntUndoOper>> records() const {
        return {undo.records().begin(), undo.records().end()};
    }

    struct Timer {
        std::int32_t wait;
        HostTimerCallback callback;
        void* argument;
    };
    struct Error {
        std::int32_t a, b, style;
        std::string text;
        friend bool operator==(const Error&, const Error&) = default;
    };
    PntUndoDatabase undo;
    PaintManager* manager = nullptr;  // whose canvases count for documentValid
    std::int32_t debugLevel = 0;
    std::map<HostTimerId, Timer> timers;
    std::vector<std::string> messages;
    std::vector<Error> errors;

  private:
    static inline SessionHost* current_ = nullptr;
    HostTimerId lastTimer_ = 0;
};

}  // namespace brushwork::test
