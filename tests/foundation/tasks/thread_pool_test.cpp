#include "foundation/tasks/thread_pool.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace brushwork {
namespace {

using znUtil::Progress;

// Both algorithms write down how they are called, and report half from every piece.
template <class Base>
class Recorder : public Base {
  public:
    bool accepts = true;
    std::string calls;

    bool begin(std::int32_t threads) override {
        calls += "begin " + std::to_string(threads) + ";";
        return accepts;
    }
    void end() override { calls += "end;"; }

  protected:
    void note(std::int32_t piece, std::int32_t threadIndex) {
        calls += "run " + std::to_string(piece) + " on " + std::to_string(threadIndex) + ";";
        this->report(threadIndex, 0.5);
    }
};

class Parts final : public Recorder<znUtil::ThreadedAlg> {
  public:
    void run(std::int32_t part, std::int32_t threadIndex) override { note(part, threadIndex); }
};

class Chunks final : public Recorder<znUtil::ThreadedChunkAlg> {
  public:
    void run(std::int32_t chunk, std::int32_t threadIndex, std::int32_t threadTotal) override {
        EXPECT_EQ(threadTotal, 1);
        note(chunk, threadIndex);
    }
};

TEST(SimpleThreadPool, CallsAnAlgorithmInOrder) {
    auto& pool = SimpleThreadPool::instance();
    EXPECT_EQ(pool.threadCount(), 1);
    Parts parts;
    EXPECT_EQ(parts.threadCount, 0);
    EXPECT_TRUE(pool.run(parts));
    EXPECT_EQ(parts.calls, "begin 1;run 0 on 1;end;");

    Chunks chunks;
    EXPECT_EQ(chunks.chunkCount, 100);
    for (const auto& [count, calls] :
         {std::pair(3, "begin 1;run 0 on 0;run 1 on 0;run 2 on 0;end;"),
          std::pair(0, "begin 1;end;"), std::pair(-1, "begin 1;end;")}) {
        chunks.chunkCount = count;
        chunks.calls.clear();
        EXPECT_TRUE(pool.run(chunks));
        EXPECT_EQ(chunks.calls, calls);
    }
}

TEST(SimpleThreadPool, ARefusedBeginRunsNothing) {
    Parts parts;
    Chunks chunks;
    parts.accepts = chunks.accepts = false;
    EXPECT_FALSE(SimpleThreadPool::instance().run(parts));
    EXPECT_FALSE(SimpleThreadPool::instance().run(chunks));
    EXPECT_EQ(parts.calls + chunks.calls, "begin 1;begin 1;");
}

TEST(ThreadedAlg, OneThreadSpeaksForAll) {
    Progress progress;
    int reports = 0;
    progress.onFraction([&](double fraction) {
        EXPECT_EQ(fraction, 0.5);
        ++reports;
    });
    Parts parts;
    SimpleThreadPool::instance().run(parts);  // nobody to tell
    parts.progress = &progress;
    SimpleThreadPool::instance().run(parts);
    EXPECT_EQ(reports, 1);
    Chunks chunks;
    chunks.progress = &progress;
    chunks.chunkCount = 3;
    SimpleThreadPool::instance().run(chunks);
    EXPECT_EQ(reports, 4);
    // Of several threads the first alone.
    parts.threadCount = 2;
    parts.run(0, 0);
    parts.run(1, 1);
    EXPECT_EQ(reports, 5);
}

}  // namespace
}  // namespace brushwork
