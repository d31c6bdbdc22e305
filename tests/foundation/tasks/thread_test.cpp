#include "foundation/tasks/thread.h"

#include <gtest/gtest.h>

#include <future>
#include <memory>
#include <stdexcept>
#include <string>

#include "brushwork/runtime.h"
#include "foundation/base/callable.h"

namespace brushwork::znThread {
namespace {

TEST(Thread, RunsItsCallableOnAnotherThreadOnce) {
    std::thread::id ran;
    int runs = 0;
    auto count = [&](int step) {
        ran = std::this_thread::get_id();
        runs += step;
    };
    Thread thread(count, 3);
    EXPECT_TRUE(thread.isDetached());
    EXPECT_FALSE(thread.join());
    ASSERT_TRUE(thread.start());
    const auto id = thread.id();
    EXPECT_FALSE(thread.start());
    EXPECT_TRUE(thread.join());
    EXPECT_FALSE(thread.join());
    EXPECT_FALSE(thread.start());
    EXPECT_EQ(runs, 3);
    EXPECT_EQ(ran, id);
    EXPECT_NE(ran, std::this_thread::get_id());
}

TEST(Thread, WithoutACallableItIsTheCallingThread) {
    Thread thread;
    EXPECT_TRUE(thread.isCalling());
    EXPECT_FALSE(thread.start());
    EXPECT_FALSE(thread.join());
    std::thread([&] { EXPECT_FALSE(thread.isCalling()); }).join();
}

// A detached thread keeps what it calls after its handle has gone; another is waited for.
TEST(Thread, TheHandleGoesFirstOrWaits) {
    std::promise<void> go;
    std::promise<int> answer;
    auto held = std::make_shared<int>(7);
    {
        Thread thread(
            [&go, &answer](const std::shared_ptr<int>& value) {
                go.get_future().wait();
                answer.set_value(*value);
            },
            std::move(held));
        ASSERT_TRUE(thread.start());
    }
    go.set_value();
    EXPECT_EQ(answer.get_future().get(), 7);

    bool ended = false;
    {
        Thread thread([](bool* flag) { *flag = true; }, &ended);
        thread.setDetached(false);
        ASSERT_TRUE(thread.start());
    }
    EXPECT_TRUE(ended);
}

// A derived class is whole before its member is called.
TEST(Thread, CallsAMemberOfADerivedClass) {
    class Share final : public Thread {
      public:
        explicit Share(int value)
            : Thread([](const auto& member) { (*member)(); },
                     Ref<znRTB::FunctionVoid>(
                         makeRef<znRTB::FunctionVoidMember<Share>>(*this, &Share::work))),
              value_(value) {}
        int result = 0;

      private:
        void work() { result = 2 * value_; }
        int value_;
    };
    Share share(21);
    ASSERT_TRUE(share.start());
    ASSERT_TRUE(share.join());
    EXPECT_EQ(share.result, 42);
}

TEST(Thread, WhatTheCallableThrowsIsLogged) {
    std::string logged;
    runtime::setLogSink([&](std::string_view text) { logged = text; });
    Thread thread([](const char* text) { throw std::runtime_error(text); }, "out of ink");
    ASSERT_TRUE(thread.start());
    ASSERT_TRUE(thread.join());
    runtime::setLogSink({});
    EXPECT_NE(logged.find("out of ink"), std::string::npos);
}

}  // namespace
}  // namespace brushwork::znThread
