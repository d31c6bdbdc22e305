// Timing for the benchmarks: several jobs, run in turn, round by round, so that what else the
// machine does falls on all of them alike; the median of each counts.
#pragma once

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstddef>
#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace brushwork::bench {

struct Job {
    std::string name;
    std::function<void()> run;
    std::function<void()> prepare;  // before each run, outside its time; may be empty
    std::vector<double> seconds;    // one entry a round

    // 0 before the first round.
    [[nodiscard]] double median() const {
        if (seconds.empty()) return 0.0;
        std::vector<double> sorted = seconds;
        const auto middle = sorted.begin() + static_cast<std::ptrdiff_t>(sorted.size() / 2);
        std::nth_element(sorted.begin(), middle, sorted.end());
        return *middle;
    }
};

class Rounds {
  public:
    // Answers the job's index.
    std::size_t add(std::string name, std::function<void()> run,
                    std::function<void()> prepare = {}) {
        jobs_.push_back({std::move(name), std::move(run), std::move(prepare), {}});
        return jobs_.size() - 1;
    }

    // One round that doesn't count, then rounds until every job has run `least` times and its
    // median has moved by under 1 % over the last five rounds, at most `most` rounds.
    void run(int least, int most) {
        for (const Job& job : jobs_) timeOf(job);
        std::vector<double> before(jobs_.size(), 0.0);
        for (int round = 1; round <= most; ++round) {
            for (Job& job : jobs_) job.seconds.push_back(timeOf(job));
            if (round % 5 != 0) continue;
            const bool settled = noteMedians(before);
            if (round >= least && settled) return;
        }
    }

    [[nodiscard]] const std::vector<Job>& jobs() const { return jobs_; }
    [[nodiscard]] double median(std::size_t job) const { return jobs_[job].median(); }

  private:
    static double timeOf(const Job& job) {
        if (job.prepare) job.prepare();
        const auto start = std::chrono::steady_clock::now();
        job.run();
        return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    }

    bool noteMedians(std::vector<double>& before) const {
        bool settled = true;
        for (std::size_t i = 0; i < jobs_.size(); ++i) {
            const double now = jobs_[i].median();
            if (std::abs(now - before[i]) > 0.01 * now) settled = false;
            before[i] = now;
        }
        return settled;
    }

    std::vector<Job> jobs_;
};

}  // namespace brushwork::bench
