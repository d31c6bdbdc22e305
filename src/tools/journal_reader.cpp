#include "tools/journal_reader.h"

#include <algorithm>
#include <utility>

namespace brushwork::tools {
namespace {

// Deeper than any operation needs, and harmless to whoever walks it.
constexpr int mostDepth = 16;

// Words of the parser's own without its numbering: "[json.exception...] parse error at ...: ".
std::string plainCause(const std::string& what) {
    std::size_t start = what.find("] ");
    start = start == std::string::npos ? 0 : start + 2;
    if (what.compare(start, 11, "parse error") == 0)
        if (const auto words = what.find(": ", start); words != std::string::npos)
            start = words + 2;
    return "not JSON: " + what.substr(start);
}

// A line that is wrong may be of any length, and words that quote it, too.
std::string shortened(std::string cause) {
    constexpr std::size_t longest = 500;
    if (cause.size() <= longest) return cause;
    std::size_t end = longest;
    while (end > 0 && (static_cast<unsigned char>(cause[end]) & 0xC0) == 0x80) --end;
    return cause.substr(0, end) + " ...";
}

struct LineReader {
    const OpBook& book;
    Journal& journal;
    std::vector<JournalFault>& faults;
    KnownNames names;
    std::int32_t line = 0;
    std::string_view text;
    bool begun = false;

    void refuse(std::size_t byte, std::string cause) {
        faults.push_back({line, columnOf(text, byte), shortened(std::move(cause))});
    }
    void refuse(const FieldFault& fault) { refuse(jsonPlace(text, fault.path), fault.cause); }

    bool parse(Json& value);
    [[nodiscard]] std::size_t quotedPlace(std::string_view what) const;
    void takeHeader(const Json& value);
    void takeOperation(Json value);
    void learnNames(const OpRules& rules, const Json& value);
    void take(std::string_view content);
};

FieldFault tooNew(const std::string& field, const std::string& name, std::int32_t version) {
    return {{field}, "\"" + name + "\" is for journals of version " + std::to_string(version)};
}

// Where a number stands that the parser quotes because it is too large; else the start.
std::size_t LineReader::quotedPlace(std::string_view what) const {
    const auto end = what.rfind('\'');
    const auto start = end == std::string_view::npos || end == 0 ? end : what.rfind('\'', end - 1);
    if (start == std::string_view::npos) return 0;
    const auto place = text.find(what.substr(start + 1, end - start - 1));
    return place == std::string_view::npos ? 0 : place;
}

bool LineReader::parse(Json& value) {
    // The parser would take it for the end.
    if (const auto zero = text.find('\0'); zero != std::string_view::npos) {
        refuse(zero, "not JSON: a zero byte");
        return false;
    }
    bool tooDeep = false;
    const auto watch = [&](int depth, Json::parse_event_t, Json&) {
        tooDeep = tooDeep || depth > mostDepth;
        return !tooDeep;
    };
    try {
        value = Json::parse(text, watch);
    } catch (const Json::parse_error& error) {
        refuse(error.byte > 0 ? error.byte - 1 : 0, plainCause(error.what()));
        return false;
    } catch (const Json::exception& error) {
        refuse(quotedPlace(error.what()), plainCause(error.what()));
        return false;
    }
    if (tooDeep) {
        refuse(0, "values are nested more than " + std::to_string(mostDepth) + " deep");
        return false;
    }
    if (const auto repeated = repeatedName(text)) {
        refuse(*repeated, "this field is given twice");
        return false;
    }
    return true;
}

void LineReader::takeHeader(const Json& value) {
    const std::vector<FieldRule> rules{
        needed(tools::text("journal")), needed(integer("version", 1, 1000000)),
        number("seed", 0.0, 9007199254740992.0), tools::text("note")};
    if (!value.is_object() || !value.contains("journal"))
        return refuse(0, "a journal begins with {\"journal\": \"brushwork\", \"version\": 2}");
    if (const auto fault = checkFields(value, rules, names)) return refuse(*fault);
    if (value["journal"] != "brushwork") return refuse({{"journal"}, "\"brushwork\" is wanted"});
    if (value["version"] > journalVersion)
        return refuse(
            {{"version"}, "this program knows versions 1 to " + std::to_string(journalVersion)});
    journal.version = value["version"].get<std::int32_t>();
    if (!value.contains("seed")) return;
    if (!value["seed"].is_number_unsigned()) return refuse({{"seed"}, "a whole number is wanted"});
    journal.seed = value["seed"].get<std::uint64_t>();
}

void LineReader::takeOperation(Json value) {
    if (!value.is_object() || !value.contains("op") || !value["op"].is_string())
        return refuse(0, "an operation is wanted: {\"op\": \"...\", ...}");
    const auto& name = value["op"].get_ref<const std::string&>();
    const OpRules* const rules = book.find(name);
    if (!rules)
        return refuse(
            {{"op"}, "there is no operation \"" + name + "\"" + perhapsMeant(name, book.names)});
    if (rules->since > journal.version) return refuse(tooNew("op", name, rules->since));
    std::vector<FieldRule> rulesOfLine = rules->fields;
    rulesOfLine.push_back(tools::text("note"));
    rulesOfLine.push_back(flag("fails"));
    if (const auto fault = checkFields(value, rulesOfLine, names, {"op"})) return refuse(*fault);
    for (const FieldRule& rule : rules->fields)
        if (rule.since > journal.version && value.contains(rule.name))
            return refuse(tooNew(rule.name, rule.name, rule.since));
    learnNames(*rules, value);
    journal.operations.emplace_back(*rules, std::move(value), line);
}

void LineReader::learnNames(const OpRules& rules, const Json& value) {
    if (value.value("fails", false)) return;
    for (const FieldRule& rule : rules.fields)
        if (rule.kind == FieldKind::NewName && value.contains(rule.name))
            names[rule.nameOf].insert(value[rule.name].get<std::string>());
}

void LineReader::take(std::string_view content) {
    ++line;
    text = content;
    if (text.find_first_not_of(" \t\r") == std::string_view::npos) return;
    Json value;
    const bool isHeader = !std::exchange(begun, true);
    if (!parse(value)) return;
    if (isHeader)
        takeHeader(value);
    else
        takeOperation(std::move(value));
}

}  // namespace

std::vector<JournalFault> readJournal(std::string_view text, const OpBook& book, Journal& journal) {
    std::vector<JournalFault> faults;
    LineReader reader{book, journal, faults, {}, 0, {}, false};
    while (!text.empty() && faults.size() < mostFaults) {
        const auto end = std::min(text.find('\n'), text.size());
        reader.take(text.substr(0, end));
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    if (!reader.begun) faults.push_back({0, 0, "holds no journal"});
    return faults;
}

}  // namespace brushwork::tools
