// A complete small host: takes a path apart, reports progress, and prints both.
#include <brushwork/filename.h>
#include <brushwork/progress.h>

#include <cstdio>

int main() {
    using namespace brushwork;
    const znOS::Filename path(znString::IString(u"/art/sketches/../cat.v2.png"), u'/');
    std::printf("%s: base name %s, extension %s\n", path.path().narrow(), path.baseName().narrow(),
                path.extension().narrow());
    return path.extension().view() == u"png" ? 0 : 1;
}
