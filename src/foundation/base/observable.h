// Observable and Observer: plain change notification.
#pragma once

#include <cstddef>
#include <memory>
#include <vector>

namespace brushwork {

class Observable;

// An observer takes itself off every observable before it goes away.
class Observer {
  public:
    virtual ~Observer();
    virtual void observableChanged(Observable& observable);
    // The observable is in its destructor: only its address is of use. No need to take oneself off.
    virtual void observableDestroyed(Observable& observable);

  protected:
    Observer() = default;
    Observer(const Observer&) = default;
    Observer& operator=(const Observer&) = default;
};

// Observers may add and take off any observer while they are told; one that is taken off is told
// no more, one that is added is told from the next time on. Belongs to the document's thread.
class Observable {
  public:
    Observable();
    // Observers belong to the object they watch, not to its copy.
    Observable(const Observable&);
    Observable& operator=(const Observable&) { return *this; }
    virtual ~Observable();

    // An observer that is added twice is told twice, and stays once when it is taken off once. Null
    // is ignored.
    void addObserver(Observer* observer);
    void removeObserver(Observer* observer);
    // In the order in which they were added. None may destroy the observable while it tells.
    void notifyObservers();

  private:
    // Null entries were taken off while observers were being told.
    using Observers = std::vector<Observer*>;

    template <class Tell>
    void tellAll(Tell tell);

    std::unique_ptr<Observers> observers_;  // null until the first one comes
    std::size_t telling_ = 0;               // notifications under way
};

}  // namespace brushwork
