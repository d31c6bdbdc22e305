#include "foundation/services/initializer.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <deque>
#include <random>
#include <string>
#include <utility>
#include <vector>

namespace brushwork::znUtil {
namespace {

class Step final : public Initializer {
  public:
    Step(std::string& trace, char name, int code = 0)
        : Initializer(__FILE__), trace_(trace), name_(name), code_(code) {}
    void initialize(Error& error) override {
        trace_ += name_;
        if (code_) error = Error(code_);
    }
    void shutdown() override { trace_ += static_cast<char>(name_ - 'a' + 'A'); }
    [[nodiscard]] char name() const { return name_; }

  private:
    std::string& trace_;
    char name_;
    int code_;
};

class InitializerTest : public ::testing::Test {
  protected:
    void SetUp() override { Initializer::reset(); }
    void TearDown() override { Initializer::reset(); }
    std::string trace_;
};

TEST_F(InitializerTest, RunsInOrderOfRegistrationAndShutsDownInReverse) {
    EXPECT_EQ(Initializer::runAll(), Error());
    Step a(trace_, 'a'), b(trace_, 'b', 4), c(trace_, 'c', 5), d(trace_, 'd');
    EXPECT_EQ(Initializer::runAll(), Error(5)) << "the last failure";
    EXPECT_EQ(trace_, "abcd");
    EXPECT_EQ(Initializer::runAll(), Error()) << "the registry is empty again";
    Initializer::shutdownAll();
    EXPECT_EQ(trace_, "abcdDCBA");
    Initializer::shutdownAll();
    EXPECT_EQ(trace_, "abcdDCBA");
    EXPECT_STREQ(a.source(), __FILE__);
}

TEST_F(InitializerTest, ManyEqualRanksKeepTheirOrder) {
    std::deque<Step> steps;
    std::string expected;
    for (int index = 0; index < 100; ++index) {
        expected += static_cast<char>('a' + index * 7 % 26);
        steps.emplace_back(trace_, expected.back());
    }
    EXPECT_EQ(Initializer::runAll(), Error());
    EXPECT_EQ(trace_, expected);
}

TEST_F(InitializerTest, DestroyedOnesLeaveEveryList) {
    Step a(trace_, 'a');
    {
        Step b(trace_, 'b');
        Initializer::addDependency(b, a);
    }
    EXPECT_EQ(Initializer::runAll(), Error());
    {
        Step c(trace_, 'c');
        EXPECT_EQ(Initializer::runAll(), Error());
    }
    Initializer::shutdownAll();
    EXPECT_EQ(trace_, "acA");
}

TEST_F(InitializerTest, ACycleIsAnErrorAndRunsNothing) {
    Step a(trace_, 'a'), b(trace_, 'b'), c(trace_, 'c');
    Initializer::addDependency(a, b);
    Initializer::addDependency(b, c);
    Initializer::addDependency(c, b);
    const Error error = Initializer::runAll();
    EXPECT_EQ(error.code(), MessageOnly);
    ASSERT_NE(error.message(), nullptr);
    EXPECT_EQ(trace_, "");
    Step d(trace_, 'd');
    Initializer::addDependency(d, d);
    EXPECT_TRUE(Initializer::runAll().failed());
    EXPECT_EQ(trace_, "");
}

// A chain of diamonds has 2^40 paths: counting by a queue would not end.
TEST_F(InitializerTest, RanksDenseDependenciesInOnePass) {
    std::deque<Step> steps;
    for (int index = 0; index < 81; ++index) steps.emplace_back(trace_, 'a');
    for (std::size_t index = 80; index >= 2; index -= 2) {
        Initializer::addDependency(steps[index], steps[index - 1]);
        Initializer::addDependency(steps[index], steps[index - 1]);
        Initializer::addDependency(steps[index - 1], steps[index - 2]);
    }
    EXPECT_EQ(Initializer::runAll(), Error());
    EXPECT_GT(steps[0].rank(), std::uint64_t{1} << 40);
}

// Beside the queue itself, on random graphs that are small enough for it.
TEST_F(InitializerTest, RanksLikeTheQueue) {
    constexpr std::uint32_t seed = 99;
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    for (int round = 0; round < 500; ++round) {
        Initializer::reset();
        trace_.clear();
        std::deque<Step> steps;
        for (char name = 'a'; name < 'i'; ++name) steps.emplace_back(trace_, name);
        std::vector<std::size_t> order = {0, 1, 2, 3, 4, 5, 6, 7};
        std::shuffle(order.begin(), order.end(), random);
        std::vector<std::pair<std::size_t, std::size_t>> pairs;
        for (auto count = random() % 12; count > 0; --count) {
            const std::size_t from = random() % 7, to = from + 1 + random() % (7 - from);
            pairs.emplace_back(order[from], order[to]);
            Initializer::addDependency(steps[order[from]], steps[order[to]]);
        }
        std::vector<std::uint64_t> ranks(8);
        std::deque<std::size_t> queue = {0, 1, 2, 3, 4, 5, 6, 7};
        while (!queue.empty()) {
            const std::size_t taken = queue.front();
            queue.pop_front();
            ++ranks[taken];
            for (const auto& [prerequisite, dependent] : pairs)
                if (prerequisite == taken) queue.push_back(dependent);
        }
        std::vector<std::size_t> expected = {0, 1, 2, 3, 4, 5, 6, 7};
        std::stable_sort(expected.begin(), expected.end(),
                         [&](auto a, auto b) { return ranks[a] < ranks[b]; });
        std::string names;
        for (const std::size_t index : expected) names += steps[index].name();
        ASSERT_EQ(Initializer::runAll(), Error());
        ASSERT_EQ(trace_, names) << "round " << round;
        for (std::size_t index = 0; index < 8; ++index)
            ASSERT_EQ(steps[index].rank(), ranks[index]);
    }
}

}  // namespace
}  // namespace brushwork::znUtil
