#include "foundation/base/observable.h"

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>

namespace brushwork {
namespace {

class Listener : public Observer {
  public:
    Listener(char letter, std::string& journal) : letter_(letter), journal_(journal) {}
    void observableChanged(Observable& observable) override {
        journal_ += letter_;
        if (onChange) onChange(observable);
    }
    void observableDestroyed(Observable& observable) override {
        journal_ += static_cast<char>(letter_ - 'a' + 'A');
        observable.removeObserver(this);
    }
    std::function<void(Observable&)> onChange;

  private:
    char letter_;
    std::string& journal_;
};

TEST(Observable, TellsEachAsOftenAsItWasAdded) {
    std::string journal;
    Listener a('a', journal);
    Listener b('b', journal);
    Observable observable;
    observable.notifyObservers();
    observable.addObserver(nullptr);
    observable.addObserver(&a);
    observable.addObserver(&b);
    observable.addObserver(&a);
    observable.notifyObservers();
    EXPECT_EQ(journal, "aba");
    observable.removeObserver(&a);
    observable.notifyObservers();
    EXPECT_EQ(journal, "ababa");
    const Observable copy(observable);
    observable.removeObserver(&a);
    observable.removeObserver(&a);
    observable.removeObserver(&b);
    observable.notifyObservers();
    EXPECT_EQ(journal, "ababa");
}

TEST(Observable, ObserversComeAndGoWhileToldAndAtTheEnd) {
    std::string journal;
    Listener a('a', journal);
    auto b = std::make_unique<Listener>('b', journal);
    Listener c('c', journal);
    auto observable = std::make_unique<Observable>();
    observable->addObserver(&a);
    observable->addObserver(b.get());
    a.onChange = [&](Observable& source) {
        source.removeObserver(b.get());
        b.reset();
        source.addObserver(&c);
        source.removeObserver(&a);
    };
    observable->notifyObservers();
    EXPECT_EQ(journal, "a");
    observable->notifyObservers();
    EXPECT_EQ(journal, "ac");
    observable->addObserver(&a);
    observable.reset();
    EXPECT_EQ(journal, "acCA");
}

}  // namespace
}  // namespace brushwork
