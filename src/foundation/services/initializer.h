// znUtil::Initializer: what must be set up in an order when the process starts.
//
//     class FontTables final : public Initializer {
//       public:
//         FontTables() : Initializer("text/font_tables.h") {}
//         void initialize(Error& error) override;
//     };
//     static FontTables fontTables;       // registers itself
//     Error error = Initializer::runAll();  // at start
//     Initializer::shutdownAll();           // at the end, in reverse order
//
// All of it runs on one thread, before there are others and after they have ended.
#pragma once

#include <cstdint>

#include "brushwork/error.h"

namespace brushwork::znUtil {

class Initializer {
  public:
    Initializer(const Initializer&) = delete;
    Initializer& operator=(const Initializer&) = delete;

    // `error` comes in as success.
    virtual void initialize(Error& error) = 0;
    virtual void shutdown() {}
    // Takes the object off every list.
    virtual ~Initializer();

    // The header that declares the class; a static string.
    [[nodiscard]] const char* source() const { return source_; }
    // How often the ordering counted it: 0 before a run, and above all that it depends on after it.
    [[nodiscard]] std::uint64_t rank() const { return rank_; }

    // `dependent` is initialized after `prerequisite`. Both must be registered when runAll comes;
    // other pairs have no effect.
    static void addDependency(Initializer& prerequisite, Initializer& dependent);
    // Initializes all that are registered, by rank, equal ranks in order of registration, and
    // forgets registrations and dependencies; what registers meanwhile waits for the next call. A
    // failure stops nothing; the last one is the answer. If the dependencies form a cycle nothing
    // is initialized, and the answer is an error with a message of its own.
    static Error runAll();
    // Shuts down what runAll initialized, failed or not, the last first.
    static void shutdownAll();
    // Forgets every list, calling nothing; for tests.
    static void reset();

  protected:
    // Registers the object.
    explicit Initializer(const char* source = "");

  private:
    struct Lists;
    static Lists& lists();
    static bool rankAll();

    const char* source_;
    std::uint64_t rank_ = 0;
};

}  // namespace brushwork::znUtil
