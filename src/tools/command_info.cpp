#include "tools/command_info.h"

#include <CLI/CLI.hpp>
#include <cstdio>
#include <map>
#include <memory>
#include <set>
#include <string>

#include "tools/exit_codes.h"
#include "tools/journal_file.h"
#include "tools/journal_ops.h"

namespace brushwork::tools {
namespace {

struct Contents {
    std::map<std::string, std::size_t> uses;  // of each operation
    std::map<NameOf, std::set<std::string>> names;
    std::set<std::string> reads, writes;
    std::size_t points = 0;
};

void look(const Operation& op, const OpRules& rules, Contents& contents) {
    ++contents.uses[op.name()];
    for (const FieldRule& rule : rules.fields) {
        if (!op.has(rule.name)) continue;
        if (rule.kind == FieldKind::NewName) contents.names[rule.nameOf].insert(op.text(rule.name));
        if (rule.kind == FieldKind::File)
            (op.name().starts_with("save") ? contents.writes : contents.reads)
                .insert(op.text(rule.name));
        if (rule.kind == FieldKind::Points) contents.points += op.fields()[rule.name].size();
    }
}

void print(const char* title, const std::set<std::string>& words) {
    if (words.empty()) return;
    std::printf("%s", title);
    for (const std::string& word : words) std::printf(" %s", word.c_str());
    std::printf("\n");
}

int info(const std::string& script) {
    Journal journal;
    if (const int exitCode = readJournalFile(script, journal); exitCode != ExitDone)
        return exitCode;
    Contents contents;
    for (const Operation& op : journal.operations) look(op, *opBook().find(op.name()), contents);
    std::printf("journal version %d, %zu operations, %zu points\n", journal.version,
                journal.operations.size(), contents.points);
    for (const auto& [name, count] : contents.uses) std::printf("  %6zu %s\n", count, name.c_str());
    for (const auto& [kind, names] : contents.names) {
        const std::string title =
            kind == NameOf::Canvas
                ? "canvases:"
                : std::string(wordFor(kind)) +
                      (kind == NameOf::Brush || kind == NameOf::Hash ? "es:" : "s:");
        print(title.c_str(), names);
    }
    print("reads:", contents.reads);
    print("writes:", contents.writes);
    return ExitDone;
}

std::string rangeOf(const FieldRule& rule, const std::string& what) {
    char numbers[80];
    std::snprintf(numbers, sizeof numbers, " from %.9g to %.9g", rule.low, rule.high);
    return what + numbers;
}

std::string choicesOf(const FieldRule& rule) {
    std::string all;
    for (const std::string& word : rule.choices) all += (all.empty() ? "" : ", ") + word;
    return all;
}

std::string wanted(const FieldRule& rule) {
    const std::string thing(wordFor(rule.nameOf));
    switch (rule.kind) {
        case FieldKind::Flag: return "true or false";
        case FieldKind::Integer: return rangeOf(rule, "a whole number");
        case FieldKind::Number: return rangeOf(rule, "a number");
        case FieldKind::Text: return "a text";
        case FieldKind::File: return "a path";
        case FieldKind::Choice: return choicesOf(rule);
        case FieldKind::Color: return R"("#rrggbb", "#rrggbbaa", or 3 or 4 numbers from 0 to 1)";
        case FieldKind::Point: return "[x, y]";
        case FieldKind::Points:
            return "[[x, y], [x, y, pressure], ...], at least " + std::to_string(rule.count);
        case FieldKind::Box: return "[x, y, width, height], whole numbers";
        case FieldKind::Numbers: return rangeOf(rule, std::to_string(rule.count) + " numbers");
        case FieldKind::NumberList: return rangeOf(rule, "whole numbers");
        case FieldKind::NewName: return "a new name of a " + thing;
        case FieldKind::Name: return "the name of a " + thing;
        case FieldKind::Names: return "a list of names, each of a " + thing;
        case FieldKind::Record: return "an object";
    }
    return {};
}

void printFields(const std::vector<FieldRule>& fields, int indent) {
    for (const FieldRule& rule : fields) {
        std::printf("%*s%s%s: %s%s\n", indent, "", rule.name.c_str(),
                    rule.isNeeded ? " (needed)" : "", wanted(rule).c_str(),
                    rule.since > 1 ? " (from version 2 on)" : "");
        printFields(rule.fields, indent + 4);
    }
}

int listOperations(const std::string& only) {
    bool found = only.empty();
    for (const OpRow& row : allOps()) {
        if (!only.empty() && row.rules.name != only) continue;
        found = true;
        std::printf("%-18s %s\n", row.rules.name.c_str(), row.rules.summary.c_str());
        if (!only.empty()) printFields(row.rules.fields, 4);
    }
    if (!found) std::fprintf(stderr, "brushwork: there is no operation %s\n", only.c_str());
    return found ? ExitDone : ExitUsage;
}

}  // namespace

void addInfoCommand(CLI::App& program, int& exitCode) {
    auto* command = program.add_subcommand("info", "Check a journal and tell what it does");
    auto script = std::make_shared<std::string>();
    auto operation = std::make_shared<std::string>();
    auto* file = command->add_option("SCRIPT", *script, "A journal; - reads standard input");
    auto* list =
        command
            ->add_option("--operations", *operation, "List all operations, or one with its fields")
            ->expected(0, 1);
    command->footer(
        "Examples:\n"
        "  brushwork info scene.jsonl\n"
        "  brushwork info --operations\n"
        "  brushwork info --operations gradient");
    command->callback([=, &exitCode] {
        if (file->count() == 0 && list->count() == 0)
            throw CLI::RequiredError("a SCRIPT or --operations");
        exitCode = list->count() > 0 ? listOperations(*operation) : ExitDone;
        if (exitCode == ExitDone && file->count() > 0) exitCode = info(*script);
    });
}

}  // namespace brushwork::tools
