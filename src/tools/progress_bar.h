// A progress bar on standard error, shown only to a person and only for many files.
#pragma once

#include <cstddef>

namespace brushwork::tools {

class ProgressBar {
  public:
    explicit ProgressBar(std::size_t total);
    // One more is done; draws.
    void step();
    // Takes the bar off the screen, before other words are written.
    void clear() const;

  private:
    std::size_t total_;
    std::size_t done_ = 0;
    bool shown_;
};

}  // namespace brushwork::tools
