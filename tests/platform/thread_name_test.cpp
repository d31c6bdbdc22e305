#include "platform/thread_name.h"

#include <gtest/gtest.h>

#include <fstream>
#include <thread>
#include <utility>

namespace brushwork::platform {
namespace {

TEST(ThreadName, ALongNameKeepsItsNumber) {
    std::thread([] {
        for (const auto& [name, shown] :
             {std::pair("painter", "painter"), std::pair("exactly fifteen", "exactly fifteen"),
              std::pair("NPC Worker Thread 12", "NPC Worker T 12"),
              std::pair("nineteen_characters", "nineteen_charac"),
              std::pair("a characteristically_long", "a characteristi")}) {
            EXPECT_TRUE(nameCallingThread(name)) << name;
            std::ifstream file("/proc/thread-self/comm");
            if (!file) GTEST_SKIP() << "no place to read the name from";
            std::string line;
            std::getline(file, line);
            EXPECT_EQ(line, shown);
        }
    }).join();
}

}  // namespace
}  // namespace brushwork::platform
