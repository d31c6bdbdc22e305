#include "geometry/ag_class_record.h"

#include <cstring>

namespace brushwork {
namespace {

// No class is deeper; a spoiled record may name itself as its parent.
constexpr int deepestClass = 16;

bool sameRecord(const AG_CLASS* found, const AG_CLASS& expected) {
    if (found == &expected) return true;
    if (!found || !found->name || found->size != expected.size) return false;
    return std::strncmp(found->name, expected.name, std::strlen(expected.name) + 1) == 0;
}

template <const AG_CLASS& record>
std::int32_t checkKind(const AG_GOB* object) {
    return agIsOfKind(object, record) ? 0 : 1;
}

constexpr const char* gobChecks[] = {"0: 1 (number of valid AG_GOB ag_check() messages)",
                                     "1: The AG_GOB object class record is corrupt."};
constexpr const char* gobCompares[] = {"0: 0 (number of valid AG_GOB ag_compare() messages)"};
constexpr const char* obChecks[] = {"0: 1 (number of valid AG_OB ag_check() messages)",
                                    "1: The AG_OB object class record is corrupt."};
constexpr const char* obCompares[] = {"0: 0 (number of valid AG_OB ag_compare() messages)"};
constexpr const char* pobChecks[] = {"0: 1 (number of valid AG_POB ag_check() messages)",
                                     "1: The AG_POB object class record is corrupt."};
constexpr const char* pobCompares[] = {"0: 0 (number of valid AG_POB ag_compare() messages)"};
constexpr const char* pob1Checks[] = {"0: 1 (number of valid AG_POB1 ag_check() messages)",
                                      "1: The AG_POB1 object class record is corrupt."};
constexpr const char* pob1Compares[] = {"0: 0 (number of valid AG_POB1 ag_compare() messages)"};
constexpr const char* pob2Checks[] = {"0: 1 (number of valid AG_POB2 ag_check() messages)",
                                      "1: The AG_POB2 object class record is corrupt."};
constexpr const char* pob2Compares[] = {"0: 0 (number of valid AG_POB2 ag_compare() messages)"};

constexpr AG_CLASS abstractClass(AG_MESSAGES checks, AG_MESSAGES compares, const char* name,
                                 const AG_CLASS* parent,
                                 std::int32_t (*check)(const AG_GOB* object)) {
    return {checks,
            compares,
            1,
            0,
            name,
            0,
            sizeof(AG_GOB),
            parent,
            {check, nullptr, nullptr, nullptr, nullptr}};
}

}  // namespace

constinit const AG_CLASS agGobClass =
    abstractClass(gobChecks, gobCompares, "AG_GOB", nullptr, checkKind<agGobClass>);
constinit const AG_CLASS agObClass =
    abstractClass(obChecks, obCompares, "AG_OB", &agGobClass, checkKind<agObClass>);
constinit const AG_CLASS agPobClass =
    abstractClass(pobChecks, pobCompares, "AG_POB", &agObClass, checkKind<agPobClass>);
constinit const AG_CLASS agPob1Class =
    abstractClass(pob1Checks, pob1Compares, "AG_POB1", &agPobClass, checkKind<agPob1Class>);
constinit const AG_CLASS agPob2Class =
    abstractClass(pob2Checks, pob2Compares, "AG_POB2", &agPobClass, checkKind<agPob2Class>);

bool agIsOfClass(const AG_GOB* object, const AG_CLASS& expected) {
    return object && sameRecord(object->cls, expected);
}

bool agIsOfKind(const AG_GOB* object, const AG_CLASS& expected) {
    const AG_CLASS* record = object ? object->cls : nullptr;
    for (int depth = 0; record && depth < deepestClass; ++depth, record = record->parent)
        if (sameRecord(record, expected)) return true;
    return false;
}

std::int32_t ag_check(const AG_GOB* object) {
    if (!object || !object->cls || !object->cls->operations.ag_check) return 1;
    return object->cls->operations.ag_check(object);
}

std::int32_t ag_compare(const AG_GOB* a, const AG_GOB* b) {
    constexpr std::int32_t incomparable = -1;
    if (!a || !a->cls || !a->cls->name || !agIsOfClass(b, *a->cls)) return incomparable;
    if (!a->cls->operations.ag_compare) return incomparable;
    return a->cls->operations.ag_compare(a, b);
}

bool ag_print(const AG_GOB* object, std::ostream& out) {
    if (!object || !object->cls || !object->cls->operations.print) return false;
    object->cls->operations.print(object, out);
    return true;
}

AgObjectPtr ag_copy(const AG_GOB* object) {
    if (!object || !object->cls || !object->cls->operations.copy) return nullptr;
    return object->cls->operations.copy(object);
}

const char* agMessage(AG_MESSAGES table, std::int32_t number) {
    if (number < 1 || static_cast<std::size_t>(number) >= table.size()) return nullptr;
    return table[static_cast<std::size_t>(number)];
}

}  // namespace brushwork
