#include "tools/journal_file.h"

#include <cstdio>
#include <fstream>
#include <iostream>
#include <vector>

#include "tools/exit_codes.h"
#include "tools/journal_ops.h"

namespace brushwork::tools {
namespace {

constexpr std::size_t mostBytes = std::size_t{256} << 20;

}  // namespace

int readJournalFile(const std::string& path, Journal& journal) {
    std::ifstream named;
    if (path != standardInput) named.open(path, std::ios::binary);
    std::istream& file = path == standardInput ? std::cin : named;
    std::string text;
    std::vector<char> block(1u << 16);
    while (file && text.size() <= mostBytes) {
        file.read(block.data(), static_cast<std::streamsize>(block.size()));
        text.append(block.data(), static_cast<std::size_t>(file.gcount()));
    }
    if (!file.eof()) {
        const bool tooLarge = text.size() > mostBytes;
        std::fprintf(stderr, "brushwork: %s: %s\n", path.c_str(),
                     tooLarge ? "larger than 256 MiB" : "can't be read");
        return tooLarge ? ExitLimit : ExitInputOutput;
    }
    const std::vector<JournalFault> faults = readJournal(text, opBook(), journal);
    for (const JournalFault& fault : faults) {
        if (fault.line > 0)
            std::fprintf(stderr, "%s:%d:%zu: %s\n", path.c_str(), fault.line, fault.column,
                         fault.cause.c_str());
        else
            std::fprintf(stderr, "%s: %s\n", path.c_str(), fault.cause.c_str());
    }
    return faults.empty() ? ExitDone : ExitBadInput;
}

}  // namespace brushwork::tools
