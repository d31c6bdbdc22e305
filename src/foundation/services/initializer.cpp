#include "foundation/services/initializer.h"

#include <algorithm>
#include <deque>
#include <map>
#include <utility>
#include <vector>

namespace brushwork::znUtil {

struct Initializer::Lists {
    using Pair = std::pair<Initializer*, Initializer*>;  // prerequisite, dependent
    std::vector<Initializer*> registered;
    std::vector<Pair> dependencies;
    std::deque<Initializer*> running;  // taken from `registered`, not yet initialized
    std::deque<Initializer*> shutdown;
};

// Built by the first registration, so that it outlives every static initializer.
Initializer::Lists& Initializer::lists() {
    static Lists lists;
    return lists;
}

Initializer::Initializer(const char* source) : source_(source) {
    lists().registered.push_back(this);
}

Initializer::~Initializer() {
    Lists& all = lists();
    std::erase(all.registered, this);
    std::erase(all.running, this);
    std::erase(all.shutdown, this);
    std::erase_if(all.dependencies, [this](const Lists::Pair& pair) {
        return pair.first == this || pair.second == this;
    });
}

void Initializer::addDependency(Initializer& prerequisite, Initializer& dependent) {
    lists().dependencies.emplace_back(&prerequisite, &dependent);
}

// One is counted once by itself and once more each time a prerequisite is counted. Going from
// prerequisites to dependents gives the same numbers as a queue in which each count of one puts
// its dependents at the back, but ends in one pass, and tells a cycle by what is left over.
bool Initializer::rankAll() {
    Lists& all = lists();
    std::map<Initializer*, std::size_t> waitsFor;
    std::map<Initializer*, std::vector<Initializer*>> dependents;
    for (Initializer* one : all.running) {
        one->rank_ = 1;
        waitsFor[one] = 0;
    }
    for (const auto& [prerequisite, dependent] : all.dependencies) {
        if (!waitsFor.contains(prerequisite) || !waitsFor.contains(dependent)) continue;
        dependents[prerequisite].push_back(dependent);
        ++waitsFor[dependent];
    }
    std::vector<Initializer*> ready;
    for (const auto& [one, count] : waitsFor)
        if (count == 0) ready.push_back(one);
    std::size_t ranked = 0;
    for (; !ready.empty(); ++ranked) {
        Initializer* one = ready.back();
        ready.pop_back();
        for (Initializer* dependent : dependents[one]) {
            dependent->rank_ += one->rank_;
            if (--waitsFor[dependent] == 0) ready.push_back(dependent);
        }
    }
    return ranked == waitsFor.size();
}

Error Initializer::runAll() {
    Lists& all = lists();
    all.running.assign(all.registered.begin(), all.registered.end());
    all.registered.clear();
    const bool ordered = rankAll();
    all.dependencies.clear();
    if (!ordered) {
        all.running.clear();
        return {MessageOnly, u"The dependencies of the initializers form a cycle."};
    }
    std::stable_sort(all.running.begin(), all.running.end(),
                     [](const auto* a, const auto* b) { return a->rank_ < b->rank_; });
    Error kept;
    while (!all.running.empty()) {
        Initializer* one = all.running.front();
        all.running.pop_front();
        all.shutdown.push_front(one);
        Error error;
        one->initialize(error);
        if (error.failed()) kept = error;
    }
    return kept;
}

void Initializer::shutdownAll() {
    std::deque<Initializer*>& list = lists().shutdown;
    while (!list.empty()) {
        Initializer* one = list.front();
        list.pop_front();
        one->shutdown();
    }
}

void Initializer::reset() {
    lists() = Lists();
}

}  // namespace brushwork::znUtil
