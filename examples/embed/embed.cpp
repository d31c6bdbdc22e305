// A complete small host: sets the process up, fills a slot of the host table, takes a path apart.
#include <brushwork/brushwork.h>

#include <cstdio>
#include <string>

int main() {
    using namespace brushwork;
    runtime::setLogSink([](std::string_view text) {
        std::fprintf(stderr, "brushwork: %s", std::string(text).c_str());
    });
    runtime::setRandomSeed(1);
    hostCallTable().debugLevel = []() -> std::int32_t { return 0; };

    const znOS::Filename path(znString::IString(u"/art/sketches/../cat.v2.png"), u'/');
    std::printf("%s: base name %s, extension %s\n", path.path().narrow(), path.baseName().narrow(),
                path.extension().narrow());
    return path.path().view() == u"/art/cat.v2.png" ? 0 : 1;
}
