// Lines that are refused: place, cause, and that nothing is done.
#include "tools/journal_reader.h"

#include <gtest/gtest.h>

#include <random>
#include <string>

#include "tools/journal_ops.h"
#include "tools/program.h"

namespace brushwork::tools {
namespace {

const std::string head = "{\"journal\": \"brushwork\", \"version\": 1}\n";

std::vector<JournalFault> faultsOf(const std::string& text) {
    Journal journal;
    return readJournal(text, opBook(), journal);
}

// The fault of a third line, behind one that names a layer.
void refused(const std::string& line, std::size_t column, const std::string& cause) {
    const auto faults = faultsOf(head + "{\"op\": \"layer\", \"name\": \"ink\"}\n" + line + "\n");
    ASSERT_EQ(faults.size(), 1u) << line;
    EXPECT_EQ(faults[0].line, 3) << line;
    EXPECT_EQ(faults[0].column, column) << line << "\n" << faults[0].cause;
    EXPECT_NE(faults[0].cause.find(cause), std::string::npos) << line << "\n" << faults[0].cause;
}

TEST(JournalReader, RefusesWithLineColumnAndCause) {
    refused("{\"op\": \"stroke\", \"points\": [[1, 2], [3, \"x\"]]}", 37, "a point is wanted");
    refused("{\"op\": \"stroke\", \"points\": [[1, 2, 7]]}", 36, "pressure");
    refused("{\"op\": \"canvas\", \"width\": 0, \"height\": 5}", 27, "from 1 to 16384");
    refused("{\"op\": \"canvas\", \"width\": 5}", 1, "\"height\" is missing");
    refused("{\"op\": \"canvas\", \"width\": 1.5, \"height\": 5}", 27, "a whole number");
    refused("{\"op\": \"canvsa\", \"width\": 5}", 8, "is \"canvas\" meant?");
    refused("{\"op\": \"set\", \"layer\": \"inc\"}", 24, "is \"ink\" meant?");
    refused("{\"op\": \"set\", \"laier\": \"ink\"}", 24, "is \"layer\" meant?");
    refused("{\"op\": \"layer\", \"name\": \"ink\"}", 25, "already a layer");
    refused("{\"op\": \"fill\", \"colour\": \"#12345\"}", 26, "a colour is wanted");
    refused("{\"op\": \"fill\", \"colour\": [0, 0, 1.01]}", 33, "from 0 to 1");
    refused("{\"op\": \"select_box\", \"box\": [0, 0, 0, 4]}", 36, "at least one pixel");
    refused("{\"op\": \"brush\", \"jitter\": {\"angle\": 20, \"size\": 1}}", 49,
            "no field \"size\"");
    refused("{\"op\": \"undo\", \"steps\": 1, \"steps\": 2}", 28, "given twice");
    refused("{\"op\": \"undo\" \"steps\": 1}", 21, "not JSON");
    refused("{\"op\": \"note\", \"text\": \"\xC3\xA4\xC3\xB6\", \"texxt\": 1}", 39, "no field");
    refused("{\"op\": \"note\", \"text\": \"\xC3(\"}", 26, "not JSON");
    refused("[1]", 1, "an operation is wanted");
    refused("{\"op\": \"wait\", \"milliseconds\": 1e999}", 32, "not JSON: number overflow");
    refused(std::string("{\"op\": \"undo\"}\0 rest", 21), 15, "a zero byte");
    refused(std::string(5000, '['), 5001, "not JSON");
}

TEST(JournalReader, QuotesOfLongLinesAreShort) {
    const std::string word(1000000, 'x');
    for (const std::string& line :
         {"{\"op\": \"" + word + "\"}", "{\"op\": \"" + word + "\x01\"}"}) {
        const auto faults = faultsOf(head + line + "\n");
        ASSERT_EQ(faults.size(), 1u);
        EXPECT_LT(faults[0].cause.size(), 1000u);
    }
}

TEST(JournalReader, WantsItsFirstLine) {
    EXPECT_EQ(faultsOf("").size(), 1u);
    EXPECT_EQ(faultsOf("\n\n").size(), 1u);
    EXPECT_EQ(faultsOf("{\"op\": \"undo\"}\n")[0].line, 1);
    const auto future = faultsOf("{\"journal\": \"brushwork\", \"version\": 3}\n");
    ASSERT_EQ(future.size(), 1u);
    EXPECT_EQ(future[0].column, 37u);
    EXPECT_TRUE(faultsOf("\r\n" + head + "\r\n").empty());
    Journal journal;
    EXPECT_TRUE(
        readJournal("{\"journal\": \"brushwork\", \"version\": 1, \"seed\": 9}", opBook(), journal)
            .empty());
    EXPECT_EQ(journal.seed, 9u);
}

// A name that an operation was to fail to give is not there.
TEST(JournalReader, NamesOfWhatFailsAreNotKnown) {
    const auto faults = faultsOf(head +
                                 "{\"op\": \"layer\", \"name\": \"a\", \"fails\": true}\n"
                                 "{\"op\": \"use_layer\", \"layer\": \"a\"}\n");
    ASSERT_EQ(faults.size(), 1u);
    EXPECT_EQ(faults[0].line, 3);
}

// Whatever bytes a good journal is broken with, reading ends, and faults lie within the text.
TEST(JournalReader, BearsAnyBytes) {
    const std::string good =
        head +
        "{\"op\": \"canvas\", \"width\": 64, \"height\": 64, \"name\": \"c\"}\n"
        "{\"op\": \"brush\", \"radius\": [1, 2], \"jitter\": {\"angle\": 3}, \"kind\": "
        "\"pastel\"}\n"
        "{\"op\": \"stroke\", \"points\": [[1, 2], [3, 4, 0.5]], \"note\": \"\\u00e4\"}\n";
    const std::string units = "{}[]\",:\\0-9.eEtrufals\n\x80\xFF ";
    std::mt19937 random(17);
    for (int round = 0; round < 20000; ++round) {
        std::string text = good;
        for (auto changes = random() % 4 + 1; changes > 0; --changes) {
            const std::size_t at = random() % text.size();
            const char unit = units[random() % units.size()];
            switch (random() % 3) {
                case 0: text[at] = unit; break;
                case 1: text.insert(at, 1, unit); break;
                default: text.erase(at, random() % 5 + 1); break;
            }
            if (text.empty()) text = "x";
        }
        for (const JournalFault& fault : faultsOf(text)) {
            ASSERT_LE(fault.column, text.size() + 1) << "round " << round;
            ASSERT_FALSE(fault.cause.empty()) << "round " << round;
        }
    }
}

TEST(JournalReader, ABadLineKeepsTheProgramFromDoingAnything) {
    test::TempFolder folder;
    const auto outcome = test::runProgram(
        folder, "run " + test::writeJournal(folder, "bad.jsonl",
                                            "{\"op\": \"canvas\", \"width\": 8, \"height\": 8}\n"
                                            "{\"op\": \"save\", \"file\": \"out.png\"}\n"
                                            "{\"op\": \"set\", \"opacity\": 2}\n"
                                            "{\"op\": \"flod\"}\n"));
    EXPECT_EQ(outcome.exitCode, 3);
    EXPECT_NE(outcome.err.find("bad.jsonl:4:26: \"opacity\": a number from 0 to 1"),
              std::string::npos)
        << outcome.err;
    EXPECT_NE(outcome.err.find("bad.jsonl:5:8: "), std::string::npos) << outcome.err;
    EXPECT_TRUE(test::readBytes(folder.file("out.png")).empty());
}

}  // namespace
}  // namespace brushwork::tools
