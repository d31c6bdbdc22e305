#include "foundation/services/log.h"

#include <gtest/gtest.h>

#include <atomic>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "brushwork/host_call_table.h"

namespace brushwork {
namespace {

class LogTest : public ::testing::Test {
  protected:
    void SetUp() override {
        setLogSink([this](std::string_view line) { lines_.emplace_back(line); });
    }
    void TearDown() override {
        setLogSink({});
        hostCallTable() = HostCallTable();
    }
    std::vector<std::string> lines_;
};

TEST_F(LogTest, HandsTextsOverAsTheyStand) {
    log("%s %d%%\n", "K\xC3\xA4se", 5);
    for (const std::size_t length : {510U, 511U, 512U, 513U, 100000U})
        log("%s", std::string(length, 'x').c_str());
    ASSERT_EQ(lines_.size(), 6U);
    EXPECT_EQ(lines_[0], "K\xC3\xA4se 5%\n");
    EXPECT_EQ(lines_[2], std::string(511, 'x'));
    EXPECT_EQ(lines_[3], std::string(512, 'x'));
    EXPECT_EQ(lines_[5].size(), 100000U);
}

TEST_F(LogTest, ALevelIsLoggedOnlyWhenTheHostAsksForIt) {
    logAt(0x2016, "no host");
    logAt(0, "level %d", 0);
    hostCallTable().debugLevel = []() -> std::int32_t { return 0x2016; };
    logAt(0x2016, "asked");
    logAt(0x1F41, "not asked");
    EXPECT_EQ(lines_, (std::vector<std::string>{"level 0", "asked"}));
}

TEST_F(LogTest, ASinkMayLogThrowAndReplaceItself) {
    setLogSink([this](std::string_view line) {
        const std::string first(line);
        if (first == "nested") throw std::runtime_error("unwelcome");
        log("nested");
        setLogSink([this](std::string_view later) { lines_.emplace_back(later); });
        lines_.push_back(first);
    });
    log("first");
    log("second");
    EXPECT_EQ(lines_, (std::vector<std::string>{"first", "second"}));
}

TEST_F(LogTest, ThreadsHandOverOneTextAtATime) {
    std::atomic<int> inside = 0;
    int lines = 0, overlaps = 0;
    setLogSink([&](std::string_view) {
        overlaps += inside.fetch_add(1) != 0;
        ++lines;
        inside.fetch_sub(1);
    });
    std::vector<std::thread> threads;
    for (int index = 0; index < 4; ++index)
        threads.emplace_back([] {
            for (int line = 0; line < 1000; ++line) log("line %d", line);
        });
    for (auto& thread : threads) thread.join();
    setLogSink({});
    EXPECT_EQ(lines, 4000);
    EXPECT_EQ(overlaps, 0);
}

}  // namespace
}  // namespace brushwork
