#include "foundation/base/observable.h"

#include <algorithm>

namespace brushwork {

Observer::~Observer() = default;

void Observer::observableChanged(Observable&) {}

void Observer::observableDestroyed(Observable&) {}

Observable::Observable() = default;

Observable::Observable(const Observable&) {}

Observable::~Observable() {
    tellAll([this](Observer& observer) { observer.observableDestroyed(*this); });
}

void Observable::addObserver(Observer* observer) {
    if (!observer) return;
    if (!observers_) observers_ = std::make_unique<Observers>();
    observers_->push_back(observer);
}

void Observable::removeObserver(Observer* observer) {
    if (!observer || !observers_) return;
    const auto place = std::find(observers_->begin(), observers_->end(), observer);
    if (place == observers_->end()) return;
    if (telling_ != 0) {
        *place = nullptr;
    } else {
        observers_->erase(place);
    }
}

void Observable::notifyObservers() {
    tellAll([this](Observer& observer) { observer.observableChanged(*this); });
}

template <class Tell>
void Observable::tellAll(Tell tell) {
    if (!observers_) return;
    ++telling_;
    const std::size_t count = observers_->size();
    for (std::size_t i = 0; i < count; ++i) {
        if (Observer* const observer = (*observers_)[i]) tell(*observer);
    }
    if (--telling_ == 0) std::erase(*observers_, nullptr);
}

}  // namespace brushwork
