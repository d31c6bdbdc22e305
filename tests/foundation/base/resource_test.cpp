#include "brushwork/resource.h"

#include <gtest/gtest.h>

#include <string>

#include "brushwork/ref.h"

namespace brushwork {
namespace {

// Writes down what happens to it: a letter when released, the same in capitals when destroyed.
class Logged : public Resource {
  public:
    Logged(char letter, std::string& journal, Ref<Logged> held = {})
        : letter_(letter), journal_(journal), held_(std::move(held)) {}

    void leaveDeferred() { unrefDeferred(); }
    Ref<Logged>& held() { return held_; }

  protected:
    ~Logged() override {
        journal_ += static_cast<char>(letter_ - 'a' + 'A');
        if (held_) held_.detach()->unrefDeferred();
    }
    void aboutToRelease() override { journal_ += letter_; }

  private:
    char letter_;
    std::string& journal_;
    Ref<Logged> held_;
};

class ResourceTest : public testing::Test {
  protected:
    ~ResourceTest() override { Resource::setDeferredRelease(0); }

    Logged* make(char letter) {
        auto* object = makeRef<Logged>(letter, journal).detach();
        return object;
    }
    std::string journal;
};

TEST_F(ResourceTest, CountsAndNumbersItsObjects) {
    Logged* const a = make('a');
    const Ref<Logged> b = makeRef<Logged>('b', journal);
    EXPECT_GT(a->objectId(), 0u);
    EXPECT_EQ(b->objectId(), a->objectId() + 1);
    a->refForward();
    EXPECT_EQ(a->refCount(), 2u);
    a->unrefForward();
    a->unref();
    EXPECT_EQ(journal, "aA");
}

class Bare : public Resource {
  public:
    explicit Bare(bool& gone) : gone_(gone) {}
    ~Bare() override { gone_ = true; }

  private:
    bool& gone_;
};

TEST_F(ResourceTest, LeavingACountOfZeroDestroys) {
    bool gone = false;
    (new Bare(gone))->unref();
    EXPECT_TRUE(gone);
}

TEST_F(ResourceTest, DeferredObjectsWaitWholeAndGoInOrder) {
    make('a')->leaveDeferred();
    EXPECT_EQ(journal, "aA");
    EXPECT_EQ(Resource::setDeferredRelease(1), 0);
    make('b')->leaveDeferred();
    Logged* const c = make('c');
    c->leaveDeferred();
    make('d')->unref();  // only the deferred way defers
    EXPECT_EQ(journal, "aAbcdD");
    EXPECT_EQ(c->refCount(), 0u);
    Resource::flushDeferred();
    EXPECT_EQ(journal, "aAbcdDBC");
    EXPECT_EQ(Resource::deferredRelease(), 1);
    make('e')->leaveDeferred();
    EXPECT_EQ(Resource::setDeferredRelease(1), 1);
    EXPECT_EQ(journal, "aAbcdDBCe");
    EXPECT_EQ(Resource::setDeferredRelease(0), 1);
    EXPECT_EQ(journal, "aAbcdDBCeE");
}

TEST_F(ResourceTest, WhatAFlushedObjectReleasesGoesAtOnce) {
    Resource::setDeferredRelease(1);
    make('b')->leaveDeferred();
    Logged* const a = make('a');
    a->held() = makeRef<Logged>('x', journal);
    a->leaveDeferred();
    make('c')->leaveDeferred();
    journal.clear();
    Resource::flushDeferred();
    EXPECT_EQ(journal, "BAxXC");
}

TEST_F(ResourceTest, AWaitingObjectMayFindAHolder) {
    Resource::setDeferredRelease(1);
    Logged* const a = make('a');
    a->leaveDeferred();
    a->ref();
    Resource::flushDeferred();
    EXPECT_EQ(journal, "a");
    a->leaveDeferred();
    a->ref();
    a->leaveDeferred();  // still listed once
    Resource::flushDeferred();
    EXPECT_EQ(journal, "aaaA");
    Logged* const b = make('b');
    b->leaveDeferred();
    b->ref();
    b->unref();  // destroyed while it waits
    Resource::flushDeferred();
    EXPECT_EQ(journal, "aaaAbbB");
}

}  // namespace
}  // namespace brushwork
