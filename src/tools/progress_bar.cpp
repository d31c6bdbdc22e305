#include "tools/progress_bar.h"

#include <cstdio>
#include <string>

#include "platform/process_calls.h"

namespace brushwork::tools {

namespace {

constexpr std::size_t manyFiles = 8;
constexpr std::size_t barWidth = 40;

}  // namespace

ProgressBar::ProgressBar(std::size_t total)
    : total_(total), shown_(total >= manyFiles && platform::errorStreamIsTerminal()) {}

void ProgressBar::step() {
    ++done_;
    if (!shown_) return;
    const std::size_t filled = barWidth * done_ / total_;
    const std::string bar = std::string(filled, '#') + std::string(barWidth - filled, '.');
    std::fprintf(stderr, "\r[%s] %zu/%zu", bar.c_str(), done_, total_);
    std::fflush(stderr);
}

void ProgressBar::clear() const {
    if (shown_ && done_ > 0) std::fputs("\r\x1b[K", stderr);
}

}  // namespace brushwork::tools
